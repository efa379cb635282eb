<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>merida::SimultWindow</name>
    <message>
        <source>Simultaneous Linear Equation</source>
        <translation>連立一次方程式</translation>
    </message>
    <message>
        <source>Determinant &amp; Inverse Matrix</source>
        <translation>行列式・逆行列</translation>
    </message>
    <message>
        <source>Dimension</source>
        <translation>次元</translation>
    </message>
    <message>
        <source>Input</source>
        <translation>係数入力</translation>
    </message>
    <message>
        <source>Go</source>
        <translation>開始</translation>
    </message>
    <message>
        <source>Determinant</source>
        <translation>行列式</translation>
    </message>
    <message>
        <source>Inverse Determi</source>
        <translation>逆行列</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>Coeff</source>
        <translation>係数</translation>
    </message>
</context>
<context>
    <name>merida::PrimeWindow</name>
    <message>
        <source>Prime</source>
        <translation>素数</translation>
    </message>
    <message>
        <source>P Factor</source>
        <translation>素因数</translation>
    </message>
    <message>
        <source>G.C.M.</source>
        <translation>公約数</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>Number 1</source>
        <translation>数値1</translation>
    </message>
    <message>
        <source>Number 2</source>
        <translation>数値2</translation>
    </message>
</context>
</TS>
