#include "virtualpad/PadTexts.h"

#include <QLocale>

namespace virtualpad {

namespace {

enum Language { English, SimplifiedChinese, TraditionalChinese, LanguageCount };

const char *const kTexts[int(PadText::TextCount)][LanguageCount] = {
    {"%1 \u2013 virtual signature pad", "%1 \u2013 虚拟签名板", "%1 \u2013 虛擬簽名板"},
    {"Sign here", "请在此签名", "請在此簽名"},
    {"Confirm", "确认", "確認"},
    {"Cancel", "取消", "取消"},
    {"Ready to sign", "等待签名", "等待簽名"},
    {"Confirmed", "已确认", "已確認"},
    {"Cancelled", "已取消", "已取消"},
    {"Screen off", "屏幕已关闭", "螢幕已關閉"},
    {"Product", "产品", "產品"},
    {"Version", "版本", "版本"},
    {"Pad ID", "签名板编号", "簽名板編號"},
    {"Pen ID", "笔编号", "筆編號"},
    {"Screen", "屏幕", "螢幕"},
};

Language language()
{
    const QLocale locale;
    if (locale.language() != QLocale::Chinese)
        return English;
    return locale.script() == QLocale::TraditionalHanScript ? TraditionalChinese : SimplifiedChinese;
}

} // namespace

QString padText(PadText text)
{
    return QString::fromUtf8(kTexts[int(text)][language()]);
}

} // namespace virtualpad
