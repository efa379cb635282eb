<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="ja">
<!-- English renderings of the texts the program shows only in Japanese: shown beside them in
     English mode and by merida-cli --lang en. One message per text, source and translation on
     one line each. -->
<context>
    <name>merida::Japanese</name>
    <message>
        <source>関数のパラメータが定数はだめです</source>
        <translation>A function's parameter cannot be a constant</translation>
    </message>
    <message>
        <source>式の変数が不足です</source>
        <translation>The formula has too few variables</translation>
    </message>
    <message>
        <source>式の変数が余分です</source>
        <translation>The formula has too many variables</translation>
    </message>
    <message>
        <source>ユーザ関数が見つかりません</source>
        <translation>The user function cannot be found</translation>
    </message>
    <message>
        <source>関数のパラメータの個数は10個までです</source>
        <translation>A function takes at most 10 parameters</translation>
    </message>
    <message>
        <source>関数と式のパラメータの個数が違います</source>
        <translation>The function and the formula have different numbers of parameters</translation>
    </message>
    <message>
        <source>このユーザ関数は既に登録されています</source>
        <translation>This user function is already registered</translation>
    </message>
    <message>
        <source>ユーザ関数のパラメータの個数が違います</source>
        <translation>The user function is given the wrong number of parameters</translation>
    </message>
    <message>
        <source>ユーザ関数はこれ以上登録できません</source>
        <translation>No more user functions can be registered</translation>
    </message>
    <message>
        <source>式が長すぎます</source>
        <translation>The formula is too long</translation>
    </message>
    <message>
        <source>0で割ることは不可です</source>
        <translation>Division by zero is not allowed</translation>
    </message>
    <message>
        <source>負の平方根は不可です</source>
        <translation>The square root of a negative number is not allowed</translation>
    </message>
    <message>
        <source>0,負のlogは不可です</source>
        <translation>The log of zero or a negative number is not allowed</translation>
    </message>
    <message>
        <source>0,負の累乗は不可です</source>
        <translation>This power of zero or of a negative number is not allowed</translation>
    </message>
    <message>
        <source>逆ｻｲﾝ、ｺｻｲﾝの範囲は、-1～1です</source>
        <translation>Arc sine and arc cosine take values from -1 to 1</translation>
    </message>
    <message>
        <source>変数が範囲外です</source>
        <translation>A variable is out of range</translation>
    </message>
    <message>
        <source>変数名または関数名が正しくありません</source>
        <translation>A variable or function name is not valid</translation>
    </message>
    <message>
        <source>文法エラーです</source>
        <translation>Syntax error</translation>
    </message>
    <message>
        <source>括弧の個数が合いません</source>
        <translation>The brackets do not match</translation>
    </message>
    <message>
        <source>グラフおよび積分の変数は１個までです</source>
        <translation>Graphs and integrals take at most one variable</translation>
    </message>
    <message>
        <source>積分およびシグマ関数はこれ以上登録できません</source>
        <translation>No more integrals or sums can be registered</translation>
    </message>
    <message>
        <source>積分関数のﾊﾟﾗﾒｰﾀが誤りです</source>
        <translation>The integral's parameters are wrong</translation>
    </message>
    <message>
        <source>微分および微分方程式の変数は１個までです</source>
        <translation>Derivatives and differential equations take at most one variable</translation>
    </message>
    <message>
        <source>根の変数は１個までです</source>
        <translation>Roots take at most one variable</translation>
    </message>
    <message>
        <source>判定値が大きすぎます</source>
        <translation>The judge value is too large</translation>
    </message>
    <message>
        <source>根の個数は20個までです</source>
        <translation>At most 20 roots are found</translation>
    </message>
    <message>
        <source>等高線の変数は2個です</source>
        <translation>Contours take two variables</translation>
    </message>
    <message>
        <source>等高線の変数名はｘとｙだけです</source>
        <translation>Contour variables must be named x and y</translation>
    </message>
    <message>
        <source>２重積分の変数は２個です</source>
        <translation>Double integrals take two variables</translation>
    </message>
    <message>
        <source>遅延演算で変数は使えません</source>
        <translation>Delay calculations cannot use variables</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀ関数がないか位置が不適正です</source>
        <translation>The data function is missing or misplaced</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀ関数のﾊﾟﾗﾒｰﾀが不適正です</source>
        <translation>The data function's parameters are not valid</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀ関数は３次元までです</source>
        <translation>Data functions have at most three dimensions</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀ関数のﾃﾞｰﾀ数は1000個までです</source>
        <translation>A data function holds at most 1000 values</translation>
    </message>
    <message>
        <source>ﾌｧｲﾙの形式が違います</source>
        <translation>The file's format is wrong</translation>
    </message>
    <message>
        <source>記録関数と分析の形式が違います</source>
        <translation>The recorded data do not suit this analysis</translation>
    </message>
    <message>
        <source>記録関数は2次元までです</source>
        <translation>Recorded data have at most two dimensions</translation>
    </message>
    <message>
        <source>記録関数のﾃﾞｰﾀ数は5000個までです</source>
        <translation>Recorded data hold at most 5000 values</translation>
    </message>
    <message>
        <source>記録関数のﾃﾞｰﾀ数がおかしい</source>
        <translation>The number of recorded values is wrong</translation>
    </message>
    <message>
        <source>回帰分析は２次元ﾃﾞｰﾀです</source>
        <translation>Regression needs two-dimensional data</translation>
    </message>
    <message>
        <source>次元の数が多すぎます</source>
        <translation>Too many dimensions</translation>
    </message>
    <message>
        <source>入力ﾃﾞｰﾀがおかしい</source>
        <translation>The input data are wrong</translation>
    </message>
    <message>
        <source>記録関数の形式が違います</source>
        <translation>The recorded data have the wrong form</translation>
    </message>
    <message>
        <source>自由度がありません</source>
        <translation>There are no degrees of freedom</translation>
    </message>
    <message>
        <source>重回帰は３次元ﾃﾞｰﾀです</source>
        <translation>Multiple regression needs three-dimensional data</translation>
    </message>
    <message>
        <source>先に計算を実行して下さい</source>
        <translation>Run the calculation first</translation>
    </message>
    <message>
        <source>展開の変数は1個しか使用できません</source>
        <translation>Expansion takes only one variable</translation>
    </message>
    <message>
        <source>因数分解の変数は1個しか使用できません</source>
        <translation>Factorisation takes only one variable</translation>
    </message>
    <message>
        <source>因数分解の因子がおかしい</source>
        <translation>The factorisation's factor is wrong</translation>
    </message>
    <message>
        <source>多項式の次数は50次までです</source>
        <translation>Polynomials have degree 50 at most</translation>
    </message>
    <message>
        <source>警告！ 警告！</source>
        <translation>Warning! Warning!</translation>
    </message>
    <message>
        <source>作成中</source>
        <translation>Making the file</translation>
    </message>
    <message>
        <source>計算中です</source>
        <translation>Now calculating</translation>
    </message>
    <message>
        <source>計算終了</source>
        <translation>Calculation finished</translation>
    </message>
    <message>
        <source>ﾌｰﾘｴ係数(実数)</source>
        <translation>Fourier coefficients (real part)</translation>
    </message>
    <message>
        <source>ﾌｰﾘｴ係数(虚数)</source>
        <translation>Fourier coefficients (imaginary part)</translation>
    </message>
    <message>
        <source>ﾊﾟﾜｰｽﾍﾟｸﾄﾙ</source>
        <translation>Power spectrum</translation>
    </message>
    <message>
        <source>自己相関関数</source>
        <translation>Autocorrelation function</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀが記録関数に読み込まれていません</source>
        <translation>No data are loaded into the record table</translation>
    </message>
    <message>
        <source>WAVE形式のﾃﾞｰﾀです</source>
        <translation>WAVE data</translation>
    </message>
    <message>
        <source>PALOMA形式のﾃﾞｰﾀです</source>
        <translation>MERIDA text data (PALOMA format)</translation>
    </message>
    <message>
        <source>ORBITA形式のﾃﾞｰﾀです</source>
        <translation>ORBITA data</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀの形式が違います</source>
        <translation>The data's format is wrong</translation>
    </message>
    <message>
        <source>標本の平均値は、母集団と異なる</source>
        <translation>The sample mean differs from the population's</translation>
    </message>
    <message>
        <source>標本の平均値は、母集団と異なるとは言えない</source>
        <translation>The sample mean cannot be said to differ from the population's</translation>
    </message>
    <message>
        <source>２標本の分散は異なる</source>
        <translation>The two samples' variances differ</translation>
    </message>
    <message>
        <source>２標本の分散は異なるとは言えない</source>
        <translation>The two samples' variances cannot be said to differ</translation>
    </message>
    <message>
        <source>適合するとは言えない</source>
        <translation>The data cannot be said to fit</translation>
    </message>
    <message>
        <source>適合すると言える</source>
        <translation>The data can be said to fit</translation>
    </message>
    <message>
        <source>重根</source>
        <translation>double root</translation>
    </message>
    <message>
        <source>虚根</source>
        <translation>complex roots</translation>
    </message>
    <message>
        <source>個ある</source>
        <translation>found</translation>
    </message>
    <message>
        <source>対角要素が０になり</source>
        <translation>A diagonal element became 0</translation>
    </message>
    <message>
        <source>計算できません</source>
        <translation>and the system cannot be solved</translation>
    </message>
    <message>
        <source>係数の行または列を</source>
        <translation>Exchange rows or columns</translation>
    </message>
    <message>
        <source>交換してください</source>
        <translation>of the coefficients</translation>
    </message>
    <message>
        <source>行列式が０になり</source>
        <translation>The determinant is 0</translation>
    </message>
    <message>
        <source>係数がおかしいと</source>
        <translation>The coefficients seem</translation>
    </message>
    <message>
        <source>思われます</source>
        <translation>to be wrong</translation>
    </message>
</context>
</TS>
