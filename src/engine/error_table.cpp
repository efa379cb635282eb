// Error numbers and their messages.
#include "engine/error_table.h"

namespace merida {

const char* ErrorMessage(int code) {
  switch (code) {
    case 1: return "関数のパラメータが定数はだめです";
    case 2: return "式の変数が不足です";
    case 3: return "式の変数が余分です";
    case 4: return "ユーザ関数が見つかりません";
    case 5: return "関数のパラメータの個数は10個までです";
    case 6: return "関数と式のパラメータの個数が違います";
    case 7: return "このユーザ関数は既に登録されています";
    case 8: return "ユーザ関数のパラメータの個数が違います";
    case 9: return "ユーザ関数はこれ以上登録できません";
    case 10: return "式が長すぎます";
    case 11: return "0で割ることは不可です";
    case 12: return "負の平方根は不可です";
    case 13: return "0,負のlogは不可です";
    case 14: return "0,負の累乗は不可です";
    case 15: return "逆ｻｲﾝ、ｺｻｲﾝの範囲は、-1～1です";
    case 16: return "変数が範囲外です";
    case 21: return "変数名または関数名が正しくありません";
    case 22: return "文法エラーです";
    case 23: return "括弧の個数が合いません";
    case 24: return "グラフおよび積分の変数は１個までです";
    case 25: return "積分およびシグマ関数はこれ以上登録できません";
    case 26: return "積分関数のﾊﾟﾗﾒｰﾀが誤りです";
    case 27: return "微分および微分方程式の変数は１個までです";
    case 28: return "根の変数は１個までです";
    case 29: return "判定値が大きすぎます";
    case 30: return "根の個数は20個までです";
    case 31: return "等高線の変数は2個です";
    case 32: return "等高線の変数名はｘとｙだけです";
    case 33: return "２重積分の変数は２個です";
    case 34: return "遅延演算で変数は使えません";
    case 35: return "ﾃﾞｰﾀ関数がないか位置が不適正です";
    case 36: return "ﾃﾞｰﾀ関数のﾊﾟﾗﾒｰﾀが不適正です";
    case 37: return "ﾃﾞｰﾀ関数は３次元までです";
    case 38: return "ﾃﾞｰﾀ関数のﾃﾞｰﾀ数は1000個までです";
    case 39: return "ﾌｧｲﾙの形式が違います";
    case 40: return "記録関数と分析の形式が違います";
    case 41: return "記録関数は2次元までです";
    case 42: return "記録関数のﾃﾞｰﾀ数は5000個までです";
    case 43: return "記録関数のﾃﾞｰﾀ数がおかしい";
    case 44: return "回帰分析は２次元ﾃﾞｰﾀです";
    case 45: return "次元の数が多すぎます";
    case 46: return "入力ﾃﾞｰﾀがおかしい";
    case 47: return "記録関数の形式が違います";
    case 48: return "自由度がありません";
    case 49: return "重回帰は３次元ﾃﾞｰﾀです";
    case 50: return "先に計算を実行して下さい";
    case 51: return "展開の変数は1個しか使用できません";
    case 52: return "因数分解の変数は1個しか使用できません";
    case 53: return "因数分解の因子がおかしい";
    case 54: return "多項式の次数は50次までです";
    case 60: return "警告！ 警告！";
    default: return nullptr;
  }
}

}  // namespace merida
