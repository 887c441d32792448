<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>QCommandLineParser</name>
    <message>
        <source>[options]</source>
        <translation>[选项]</translation>
    </message>
    <message>
        <source>Usage: %1</source>
        <translation>用法：%1</translation>
    </message>
    <message>
        <source>Options:</source>
        <translation>选项：</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>参数：</translation>
    </message>
    <message>
        <source>Displays version information.</source>
        <translation>显示版本。</translation>
    </message>
    <message>
        <source>Unknown option &apos;%1&apos;.</source>
        <translation>未知的选项“%1”</translation>
    </message>
    <message>
        <source>Unknown options: %1.</source>
        <translation>未知的选项：%1</translation>
    </message>
    <message>
        <source>Missing value after &apos;%1&apos;.</source>
        <translation>“%1”之后缺少值</translation>
    </message>
    <message>
        <source>Unexpected value after &apos;%1&apos;.</source>
        <translation>“%1”之后不应有值</translation>
    </message>
</context>
</TS>
