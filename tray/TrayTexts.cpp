#include "tray/TrayTexts.h"

namespace {

const TrayTexts traditionalChinese = {"Morvane電子簽名板驅動程式", "開啟服務程式", "開啟服務程式(使用SSL認證)",
                                      "每次開機時自動啟動", "離開服務程式"};
const TrayTexts simplifiedChinese = {"Morvane电子签名板驱动程序", "开启服务程序", "开启服务程序(使用SSL认证)",
                                     "每次开机时自动启动", "离开服务程序"};
const TrayTexts english = {"MVSignLocalServer", "Start Service", "Start Service (SSL)", "Auto Launch at Startup",
                           "Exit Service"};

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
