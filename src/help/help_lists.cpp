// The lines are kept byte for byte, blanks included: the list boxes show them as they are.
#include "help/help_lists.h"

#include <array>

#include "main/app_state.h"

namespace merida {
namespace {

constexpr std::array<std::string_view, 6> kOperatorsEnglish = {
    " +  Addition ",
    " -  Subtraction ",
    " *  Multiplication ",
    " /  Division ",
    " ^  Power  ",
    " !  Factorial ",
};

constexpr std::array<std::string_view, 6> kOperatorsJapanese = {
    " +  足し算 ",
    " -  引き算 ",
    " *  掛け算 ",
    " /   割り算 ",
    " ^   累乗   ",
    " !   階乗   ",
};

constexpr std::array<std::string_view, 26> kFunctionsEnglish = {
    " sqr(x)     Root       ",
    " abs(x)     Abusolute  ",
    " sin(x)     Sine       ",
    " cos(x)     Cosine     ",
    " tan(x)     Tangent    ",
    " exp(x)     Exponent   ",
    " ln(x)      Natural Logarithm",
    " log(x)     Common Logarithm",
    " sinh(x)    HyperbolicSine",
    " cosh(x)    HyperbolicCosine",
    " tanh(x)    HyperbolicTangent",
    " asin(x)    ArcSine    ",
    " acos(x)    ArcCosine  ",
    " atan(x)    ArcTangent ",
    " perm(n,r)  Permutation ",
    " comb(n,r)  Combination ",
    " random(a)  Random Numbers(0～1) ",
    " integ(x,a,b,n)  Integration ",
    " sgm(x,a,b,x)   Sigma ",
    " diff          First-order Differential ",
    " timestep(n)    Delay \u3000",
    " erf(x)     Error Function",
    " Jn(n,x)  Bessel Function of the first kind",
    " Yn(n,x)  Bessel Function of the second kind",
    " Gamma(x)  Gammma Function",
    " Pn(n,x)  Legendre Function",
};

constexpr std::array<std::string_view, 26> kFunctionsJapanese = {
    " sqr(x)     ﾙｰﾄ        ",
    " abs(x)     絶対値     ",
    " sin(x)      ｻｲﾝ        ",
    " cos(x)     ｺｻｲﾝ       ",
    " tan(x)     ﾀﾝｼﾞｪﾝﾄ    ",
    " exp(x)     指数       ",
    " ln(x)      自然対数   ",
    " log(x)     常用対数  ",
    " sinh(x)    双曲ｻｲﾝ   ",
    " cosh(x)    双曲ｺｻｲﾝ   ",
    " tanh(x)    双曲ﾀﾝｼﾞｪﾝﾄ",
    " asin(x)     逆ｻｲﾝ     ",
    " acos(x)    逆ｺｻｲﾝ     ",
    " atan(x)     逆ﾀﾝｼﾞｪﾝﾄ  ",
    " perm(n,r)  順列       ",
    " comb(n,r)  組合わせ   ",
    " random(a)  乱数(0～1) ",
    " integ(x,a,b,n)  積分  ",
    " sgm(x,a,b,x)   ｼｸﾞﾏ   ",
    " diff          1階微分 ",
    " timestep(n)    遅延 \u3000",
    " erf(x)     誤差関数 ",
    " Jn(n,x) 第1種ﾍﾞｯｾﾙ関数",
    " Yn(n,x) 第2種ﾍﾞｯｾﾙ関数",
    " Gamma(x)  ｶﾞﾝﾏ関数",
    " Pn(n,x) ﾙｼﾞｬﾝﾄﾞﾙ関数",
};

}  // namespace

std::span<const std::string_view> OperatorLines(int16_t language) {
  if (language == kJapanese) return kOperatorsJapanese;
  return kOperatorsEnglish;
}

std::span<const std::string_view> FunctionLines(int16_t language) {
  if (language == kJapanese) return kFunctionsJapanese;
  return kFunctionsEnglish;
}

}  // namespace merida
