#include "tray/TrayTexts.h"

namespace {

const TrayTexts traditionalChinese = {
    "Morvane電子簽名板驅動程式",
    "開啟服務程式",
    "開啟服務程式(使用SSL認證)",
    "每次開機時自動啟動",
    "網頁存取權限",
    "離開服務程式",
    {
        "簽名板",
        "有網頁要求使用簽名板",
        "許多互不相干的網頁共用這個來源，因此只能允許這一次。",
        "允許後，該網頁可以：",
        "讀取簽名，以及有感應器的簽名板所採集的指紋圖片",
        "清除簽名板、改變筆的設定，以及變更 WPS 的簽名設定",
        "把檔案寫入您能寫入的任何資料夾，包括登入時會執行的檔案",
        "把檔案寫入 %1 及其子資料夾，並把兩張 WPS 簽名圖片寫入 /tmp",
        "只把兩張 WPS 簽名圖片寫入 /tmp，不能寫入其他檔案",
        "一分鐘內沒有回答，視為「暫不允許」。",
        "只允許這次(&A)",
        "一律允許(&L)",
        "永不允許(&V)",
        "暫不允許(&N)",
    },
    {
        "網頁存取權限",
        "這些網頁使用簽名板時不再詢問：",
        "一律允許",
        "永不允許",
        "允許(&A)",
        "禁止(&B)",
        "刪除(&D)",
        "關閉(&C)",
        "尚未一律允許或永不允許任何網頁。",
        "無法讀取或變更檔案 %1。",
    },
};

const TrayTexts simplifiedChinese = {
    "Morvane电子签名板驱动程序",
    "开启服务程序",
    "开启服务程序(使用SSL认证)",
    "每次开机时自动启动",
    "网页访问权限",
    "离开服务程序",
    {
        "签名板",
        "有网页请求使用签名板",
        "许多互不相干的网页共用这个来源，因此只能允许这一次。",
        "允许后，该网页可以：",
        "读取签名，以及带传感器的签名板采集的指纹图片",
        "清空签名板、更改笔的设置，以及更改 WPS 的签名设置",
        "把文件写入您能写入的任何目录，包括登录时会运行的文件",
        "把文件写入 %1 及其子目录，并把两张 WPS 签名图片写入 /tmp",
        "只把两张 WPS 签名图片写入 /tmp，不能写入其他文件",
        "一分钟内没有回答，视为“暂不允许”。",
        "仅允许这次(&A)",
        "始终允许(&L)",
        "永不允许(&V)",
        "暂不允许(&N)",
    },
    {
        "网页访问权限",
        "这些网页使用签名板时不再询问：",
        "始终允许",
        "永不允许",
        "允许(&A)",
        "禁止(&B)",
        "删除(&D)",
        "关闭(&C)",
        "尚未始终允许或永不允许任何网页。",
        "无法读取或更改文件 %1。",
    },
};

const TrayTexts english = {
    "MVSignLocalServer",
    "Start Service",
    "Start Service (SSL)",
    "Auto Launch at Startup",
    "Web Page Permissions",
    "Exit Service",
    {
        "Signature Pad",
        "A web page asks to use the signature pad",
        "Many pages that have nothing to do with each other share this origin, so it can be allowed for this time "
        "only.",
        "When it is allowed, the page can:",
        "read the signature, and the fingerprint picture of a pad with a sensor",
        "clear the pad, change its pen, and change the signature settings for WPS",
        "write files in any folder that you can write in, also files that run when you log in",
        "write files in %1 and below, and two signature pictures for WPS in /tmp",
        "write no files but two signature pictures for WPS in /tmp",
        "No answer within a minute counts as \"Not now\".",
        "&Allow this time",
        "A&lways allow",
        "Ne&ver",
        "&Not now",
    },
    {
        "Web Page Permissions",
        "You are not asked any more when these web pages use the signature pad:",
        "Always allowed",
        "Never allowed",
        "&Allow",
        "&Block",
        "&Delete",
        "&Close",
        "No web page has been allowed always or never.",
        "The file %1 cannot be read or changed.",
    },
};

} // namespace

const TrayTexts &TrayTextsOf(int nUILangID)
{
    switch (nUILangID) {
    case 1:
        return traditionalChinese;
    case 2:
        return simplifiedChinese;
    default:
        return english;
    }
}
