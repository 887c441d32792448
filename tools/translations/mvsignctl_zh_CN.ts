<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>Text</name>
    <message>
        <source>there is no session bus that answers</source>
        <translation>没有可用的会话总线</translation>
    </message>
    <message>
        <source>the program does not run in this session</source>
        <translation>程序未在本会话中运行</translation>
    </message>
    <message>
        <source>program</source>
        <translation>程序</translation>
    </message>
    <message>
        <source>other copies</source>
        <translation>其他副本</translation>
    </message>
    <message>
        <source>tray</source>
        <translation>托盘</translation>
    </message>
    <message>
        <source>icon</source>
        <translation>图标</translation>
    </message>
    <message>
        <source>launch at log-in</source>
        <translation>登录时启动</translation>
    </message>
    <message>
        <source>settings files</source>
        <translation>设置文件</translation>
    </message>
    <message>
        <source>access settings</source>
        <translation>访问设置</translation>
    </message>
    <message>
        <source>port</source>
        <translation>端口</translation>
    </message>
    <message>
        <source>name localhost</source>
        <translation>名称 localhost</translation>
    </message>
    <message>
        <source>answer over IPv4</source>
        <translation>IPv4 应答</translation>
    </message>
    <message>
        <source>answer over IPv6</source>
        <translation>IPv6 应答</translation>
    </message>
    <message>
        <source>browser policy</source>
        <translation>浏览器策略</translation>
    </message>
    <message>
        <source>pad library</source>
        <translation>厂商库</translation>
    </message>
    <message>
        <source>library&apos;s machine</source>
        <translation>库的架构</translation>
    </message>
    <message>
        <source>library&apos;s functions</source>
        <translation>库的函数</translation>
    </message>
    <message>
        <source>pad</source>
        <translation>签名板</translation>
    </message>
    <message>
        <source>Chinese font</source>
        <translation>中文字体</translation>
    </message>
    <message>
        <source>process %1 of user %2</source>
        <translation>用户 %2 的进程 %1</translation>
    </message>
    <message>
        <source>nobody listens at %1: choose &quot;Start Service&quot; in the tray menu</source>
        <translation>端口 %1 无人监听：请在托盘菜单中选择“开启服务程序”</translation>
    </message>
    <message>
        <source>nobody listens at %1; correct the settings: %2</source>
        <translation>端口 %1 无人监听，请更正设置：%2</translation>
    </message>
    <message>
        <source>the program listens at %1, the settings say %2: start the service again</source>
        <translation>程序监听端口 %1，而设置为 %2：请重新开启服务</translation>
    </message>
    <message>
        <source>nobody listens at %1: start the program, and the service in its tray menu</source>
        <translation>端口 %1 无人监听：请启动程序，并在托盘菜单中开启服务</translation>
    </message>
    <message>
        <source>none, as ListenAddress says; pages come over the other one</source>
        <translation>按 ListenAddress 的设置，此处没有应答；网页经另一种地址连接</translation>
    </message>
    <message>
        <source>%1: see the line about the port</source>
        <translation>%1：请看“端口”一行</translation>
    </message>
    <message>
        <source>the service does not know the request: it serves another port, or is another one</source>
        <translation>服务不认识该请求：它监听的是另一个端口，或者不是本服务</translation>
    </message>
    <message>
        <source>the service answers at %1</source>
        <translation>服务在 %1 应答</translation>
    </message>
    <message>
        <source>another user&apos;s program holds %1: end it, or set WebSocketPort</source>
        <translation>另一用户的程序占用了端口 %1：请结束它，或设置 WebSocketPort</translation>
    </message>
    <message>
        <source>%1 (%2) holds %3: end it and start the service again, or set WebSocketPort</source>
        <translation>%1（%2）占用了端口 %3：请结束它并重新开启服务，或设置 WebSocketPort</translation>
    </message>
    <message>
        <source>the program listens at %1</source>
        <translation>程序正在监听端口 %1</translation>
    </message>
    <message>
        <source>does not lead to this machine: put &quot;127.0.0.1 localhost&quot; into /etc/hosts</source>
        <translation>未指向本机：请在 /etc/hosts 中加入“127.0.0.1 localhost”</translation>
    </message>
    <message>
        <source>this machine has none</source>
        <translation>本机没有</translation>
    </message>
    <message>
        <source>nothing keeps pages from this machine</source>
        <translation>没有阻止网页访问本机的策略</translation>
    </message>
    <message>
        <source>keeps pages from this machine, except the pages that need it: %1</source>
        <translation>阻止网页访问本机，请为需要的网页放行：%1</translation>
    </message>
    <message>
        <source>%1 is not there: copy the library of the pad&apos;s maker to it</source>
        <translation>%1 不存在：请把厂商库复制到此处</translation>
    </message>
    <message>
        <source>%1 cannot be read: sudo chmod 644 %1</source>
        <translation>无法读取 %1：sudo chmod 644 %1</translation>
    </message>
    <message>
        <source>there is no library to look at</source>
        <translation>没有可检查的库</translation>
    </message>
    <message>
        <source>the same as the program&apos;s</source>
        <translation>与程序相同</translation>
    </message>
    <message>
        <source>the library is built for another one: get the one for %1</source>
        <translation>库是为另一种架构构建的：请换用 %1 的库</translation>
    </message>
    <message>
        <source>the library crashes or hangs when it is loaded: get another one</source>
        <translation>库在加载时崩溃或停住：请换用另一个库</translation>
    </message>
    <message>
        <source>cannot be loaded, install what it needs: %1</source>
        <translation>无法加载，请安装它所需要的：%1</translation>
    </message>
    <message>
        <source>no model is complete, get another library: %1</source>
        <translation>没有一个型号是完整的，请换用另一个库：%1</translation>
    </message>
    <message>
        <source>the program has opened the model %1</source>
        <translation>程序已打开型号 %1</translation>
    </message>
    <message>
        <source>nothing on USB could be one: plug it in; lsusb shows what the system sees</source>
        <translation>USB 上没有像签名板的设备：请插上签名板；用 lsusb 查看系统识别到的设备</translation>
    </message>
    <message>
        <source>%1 may be one, and the user may open %2</source>
        <translation>%1 可能是签名板，用户可以打开 %2</translation>
    </message>
    <message>
        <source>%1 may be one, but the user may not open %2: install the rules that come with the maker&apos;s library, and plug it in again</source>
        <translation>%1 可能是签名板，但用户无权打开 %2：请安装厂商库附带的规则，再重新插入</translation>
    </message>
    <message>
        <source>cannot be looked for: install fc-list (package fontconfig)</source>
        <translation>无法查找：请安装 fc-list（软件包 fontconfig）</translation>
    </message>
    <message>
        <source>there is none: install one, such as fonts-noto-cjk</source>
        <translation>没有中文字体：请安装一种，例如 fonts-noto-cjk</translation>
    </message>
    <message>
        <source>%1 starts nothing: remove it, and switch the launch on in the tray menu</source>
        <translation>%1 不启动任何程序：请删除它，并在托盘菜单中打开自动启动</translation>
    </message>
    <message>
        <source>%1 starts %2, which is not there: install the program, or remove the entry</source>
        <translation>%1 启动 %2，但后者不存在：请安装程序，或删除该自启动项</translation>
    </message>
    <message>
        <source>by %1</source>
        <translation>由 %1 启动</translation>
    </message>
    <message>
        <source>does not run: start it from the application menu, or %1/%2</source>
        <translation>未运行：请从应用程序菜单启动，或运行 %1/%2</translation>
    </message>
    <message>
        <source>only %1 runs, and serves that user: it must end before the program can start here</source>
        <translation>只有%1 在运行，为该用户服务：它结束后程序才能在此启动</translation>
    </message>
    <message>
        <source>%1, %2; there is no session bus to ask it more</source>
        <translation>%1，%2；没有会话总线，无法询问更多</translation>
    </message>
    <message>
        <source>%1 runs, but not in this session: end it and start it here</source>
        <translation>%1 在运行，但不在本会话中：请结束它，并在此启动</translation>
    </message>
    <message>
        <source>%1, version %2, %3</source>
        <translation>%1，版本 %2，%3</translation>
    </message>
    <message>
        <source>the program cannot look for them: install pgrep (package procps)</source>
        <translation>程序无法查找：请安装 pgrep（软件包 procps）</translation>
    </message>
    <message>
        <source>none, and nothing that looks like one</source>
        <translation>没有，也没有会被误认的进程</translation>
    </message>
    <message>
        <source>end what keeps the program from starting: %1</source>
        <translation>请结束妨碍程序启动的进程：%1</translation>
    </message>
    <message>
        <source>a StatusNotifier host is on the session bus</source>
        <translation>会话总线上有 StatusNotifier 托盘</translation>
    </message>
    <message>
        <source>a panel has an XEmbed tray</source>
        <translation>面板有 XEmbed 托盘</translation>
    </message>
    <message>
        <source>this desktop has none, and without it the program ends after half a minute: add the tray applet to the panel</source>
        <translation>此桌面环境没有托盘，程序在半分钟后结束：请给面板添加托盘插件</translation>
    </message>
    <message>
        <source>%1 is missing: install the package mvsignpad again</source>
        <translation>缺少 %1：请重新安装软件包 mvsignpad</translation>
    </message>
    <message>
        <source>Qt cannot read it without %1: install Qt&apos;s image formats</source>
        <translation>缺少 %1，Qt 无法读取图标：请安装 Qt 的图片格式插件</translation>
    </message>
    <message>
        <source>the entry of another desktop lies here, remove it: %1</source>
        <translation>这里有另一种桌面环境的自启动项，请删除：%1</translation>
    </message>
    <message>
        <source>not asked for</source>
        <translation>未选择</translation>
    </message>
    <message>
        <source>this desktop (%1) has no entry of its own: copy %2 to %3</source>
        <translation>此桌面环境（%1）没有自己的桌面项：请把 %2 复制到 %3</translation>
    </message>
    <message>
        <source>was chosen, but %1 is not there: choose it again in the tray menu</source>
        <translation>已选择，但 %1 不存在：请在托盘菜单中重新选择</translation>
    </message>
    <message>
        <source>%1 cannot be read: check its owner and its rights, or remove it</source>
        <translation>无法读取 %1：请检查所有者和权限，或删除它</translation>
    </message>
    <message>
        <source>%1 has an unknown key, correct or remove it: %2</source>
        <translation>%1 中有未知的键，请更正或删除：%2</translation>
    </message>
    <message>
        <source>WebSocketPort must be a port from 1 to 65535, not %1</source>
        <translation>WebSocketPort 必须是 1 到 65535 的端口，而不是 %1</translation>
    </message>
    <message>
        <source>none, so the defaults hold</source>
        <translation>没有，使用默认值</translation>
    </message>
    <message>
        <source>correct what keeps the service closed: %1</source>
        <translation>请更正使服务不开放的设置：%1</translation>
    </message>
    <message>
        <source>who reaches %1</source>
        <translation>能访问 %1 的客户端</translation>
    </message>
    <message>
        <source>every machine that reaches the port</source>
        <translation>能访问该端口的所有计算机</translation>
    </message>
    <message>
        <source>every page</source>
        <translation>所有网页</translation>
    </message>
    <message>
        <source>no page</source>
        <translation>没有网页</translation>
    </message>
    <message>
        <source>the pages of %1</source>
        <translation>%1 的网页</translation>
    </message>
    <message>
        <source>programs that name an origin</source>
        <translation>说明来源的程序</translation>
    </message>
    <message>
        <source>every program</source>
        <translation>所有程序</translation>
    </message>
    <message>
        <source>no connection to %1: %2</source>
        <translation>无法连接 %1：%2</translation>
    </message>
    <message>
        <source>no answer from %1 within %2 s</source>
        <translation>%1 在 %2 秒内没有应答</translation>
    </message>
    <message>
        <source>what answers at %1 is not the signature pad service</source>
        <translation>在 %1 应答的不是签名板服务</translation>
    </message>
    <message>
        <source>%1: complete</source>
        <translation>%1：完整</translation>
    </message>
    <message>
        <source>%1: not in it</source>
        <translation>%1：库中没有</translation>
    </message>
    <message>
        <source>%1: lacks %2</source>
        <translation>%1：缺少 %2</translation>
    </message>
    <message>
        <source>the service calls this an invalid request: %1</source>
        <translation>服务认为请求无效：%1</translation>
    </message>
    <message>
        <source>Host of the service (localhost).</source>
        <translation>服务所在的主机（localhost）。</translation>
    </message>
    <message>
        <source>Port of the service (that of the user&apos;s settings, 8089).</source>
        <translation>服务的端口（用户设置中的端口，8089）。</translation>
    </message>
    <message>
        <source>Seconds to wait for the reply (10).</source>
        <translation>等待应答的秒数（10）。</translation>
    </message>
    <message>
        <source>Print the whole reply.</source>
        <translation>显示完整的应答。</translation>
    </message>
    <message>
        <source>Print the state as JSON.</source>
        <translation>以 JSON 显示状态。</translation>
    </message>
    <message>
        <source>Print the commands with their keys.</source>
        <translation>列出各个命令及其键。</translation>
    </message>
    <message>
        <source>Print this help.</source>
        <translation>显示本帮助。</translation>
    </message>
    <message>
        <source>Sends one request to the signature pad service and prints the result.
Exit status: 0 a result, 1 the service calls the request invalid, 2 no connection, no answer or wrong usage.

In place of a request:</source>
        <translation>向签名板服务发送一条请求，并显示结果。
退出状态：0 有结果，1 服务认为请求无效，2 无连接、无应答或用法错误。

请求的位置上也可以是：</translation>
    </message>
    <message>
        <source>The command, for example SetPenColor.</source>
        <translation>命令，例如 SetPenColor。</translation>
    </message>
    <message>
        <source>Its parameters, for example R=255.</source>
        <translation>命令的参数，例如 R=255。</translation>
    </message>
    <message>
        <source>no command given</source>
        <translation>没有给出命令</translation>
    </message>
    <message>
        <source>not a port: %1</source>
        <translation>不是端口：%1</translation>
    </message>
    <message>
        <source>not a number of seconds: %1</source>
        <translation>不是秒数：%1</translation>
    </message>
    <message>
        <source>%1 does not take --json</source>
        <translation>%1 不接受 --json</translation>
    </message>
    <message>
        <source>to be called as: mvsignctl %1 %2</source>
        <translation>用法：mvsignctl %1 %2</translation>
    </message>
    <message>
        <source>neither .png nor .svg nor .json: %1</source>
        <translation>既不是 .png、.svg，也不是 .json：%1</translation>
    </message>
    <message>
        <source>there is nothing on the pad, or no pad</source>
        <translation>签名板上没有内容，或没有签名板</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>neither on nor off: %1</source>
        <translation>既不是 on，也不是 off：%1</translation>
    </message>
    <message>
        <source>what the running program says of itself</source>
        <translation>显示运行中的程序的状态</translation>
    </message>
    <message>
        <source>looks for what is wrong and says what to do</source>
        <translation>查找问题，并说明如何解决</translation>
    </message>
    <message>
        <source>switches the running program&apos;s diagnostic log</source>
        <translation>开关运行中的程序的诊断日志</translation>
    </message>
    <message>
        <source>follows the pad; JSON lines where it is no terminal</source>
        <translation>跟踪签名板；不在终端时输出 JSON 行</translation>
    </message>
    <message>
        <source>saves what is on the pad as .png, .svg or .json</source>
        <translation>把签名板上的内容保存为 .png、.svg 或 .json</translation>
    </message>
    <message>
        <source>which functions of each model a pad library has</source>
        <translation>显示签名板的库有各个型号的哪些函数</translation>
    </message>
    <message>
        <source>%1 (see mvsignctl --help)</source>
        <translation>%1（见 mvsignctl --help）</translation>
    </message>
    <message>
        <source>confirm</source>
        <translation>确认</translation>
    </message>
    <message>
        <source>cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>pad: %1, points: %2, key: %3, pushes: %4</source>
        <translation>签名板：%1，点数：%2，按键：%3，推送：%4</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>已连接</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>files below %1</source>
        <translation>文件只写入 %1 之下</translation>
    </message>
    <message>
        <source>files anywhere</source>
        <translation>文件可写入任何位置</translation>
    </message>
    <message>
        <source>served are: %1; %2; %3; %4</source>
        <translation>服务对象：%1；%2；%3；%4</translation>
    </message>
    <message>
        <source>which pages are served; changes what was answered about them</source>
        <translation>显示接受哪些网页，更改对网页的决定</translation>
    </message>
    <message>
        <source>the user is asked</source>
        <translation>询问用户</translation>
    </message>
    <message>
        <source>refused</source>
        <translation>拒绝</translation>
    </message>
    <message>
        <source>served</source>
        <translation>接受</translation>
    </message>
    <message>
        <source>nobody is served: %1</source>
        <translation>不接受任何客户端：%1</translation>
    </message>
    <message>
        <source>allowed by the settings</source>
        <translation>设置允许</translation>
    </message>
    <message>
        <source>allowed</source>
        <translation>已允许</translation>
    </message>
    <message>
        <source>allowed where the user is asked, which is not so</source>
        <translation>已允许（仅在询问用户时有效，目前不询问）</translation>
    </message>
    <message>
        <source>blocked</source>
        <translation>已阻止</translation>
    </message>
    <message>
        <source>pages of other origins: %1</source>
        <translation>其他来源的网页：%1</translation>
    </message>
    <message>
        <source>not an origin such as https://sign.example.org: %1</source>
        <translation>不是 https://sign.example.org 这样的来源：%1</translation>
    </message>
    <message>
        <source>%1 stands for many pages, which cannot be allowed together</source>
        <translation>%1 代表许多不同的网页，不能一并允许</translation>
    </message>
    <message>
        <source>%1 cannot be changed: check its owner, its rights and its lines, or remove it</source>
        <translation>无法更改 %1：请检查其所有者、权限和内容，或将其删除</translation>
    </message>
    <message>
        <source>neither list nor allow, block or forget with an origin: %1</source>
        <translation>既不是 list，也不是带来源的 allow、block 或 forget：%1</translation>
    </message>
    <message>
        <source>not tried, since no program is served</source>
        <translation>未尝试，因为不接受任何程序</translation>
    </message>
    <message>
        <source>pages when the user allows it</source>
        <translation>经用户允许的网页</translation>
    </message>
    <message>
        <source>the pages of %1, others when the user allows it</source>
        <translation>%1 的网页，以及经用户允许的其他网页</translation>
    </message>
    <message>
        <source>%1, but none of %2</source>
        <translation>%1（%2 除外）</translation>
    </message>
</context>
</TS>
