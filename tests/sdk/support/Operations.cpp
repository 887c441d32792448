#include "tests/sdk/support/Operations.h"

#include "device/SignObjInterface.h"

#include <cstring>

namespace {

using recording::number;
using recording::outputInts;
using recording::outputText;
using recording::point;
using recording::text;

QString spelled(bool reply)
{
    return reply ? QStringLiteral("true") : QStringLiteral("false");
}

QString spelled(int reply)
{
    return QString::number(reply);
}

QString spelled(const QString &reply)
{
    return QLatin1Char('"') + reply + QLatin1Char('"');
}

void onKey(int /*nEventID*/) {}
void onPicture(char * /*pData*/) {}

const char *const everyModel = "ABCMR";
const char *const withLcd = "ABC";

} // namespace

// clang-format off
// Both ways to ask for an operation: through the manager and on a pad object itself.
#define ASK(expression)                                                                                                \
    [](SignObjManager &pad, int nDeviceID) { Q_UNUSED(nDeviceID) return expression; },                                 \
    [](SignObjInterface &pad, int nDeviceID) { Q_UNUSED(nDeviceID) return expression; }
#define REPLY(call) ASK(spelled(pad.call))
#define DO(call) ASK((pad.call, QStringLiteral("void")))

static std::vector<Operation> operations()
{
    const char *const image = R"("[{"EventType":"0","Image":"QUJD","ImageLength":"4"}]")";
    return {
        {"GetAboutInfo", REPLY(GetAboutInfo()), everyModel,
         {{{"MV*_GetAboutInfo(ID, buf)", outputText("About the pad")}}, R"("About the pad")"},
         R"("")", R"("")", R"("")", {}},
        {"InitialDevice", REPLY(InitialDevice(nDeviceID, 640, 400)), everyModel,
         {{{"MV*_UnInitialDevice(ID)", number(0)},
           {"MV*_InitialDevice(ID, null, 0, 0, 640, 400)", number(1)}}, "true"},
         "false", "false", "false",
         {{"UnInitialDevice", {{{"MV*_InitialDevice(ID, null, 0, 0, 640, 400)", number(1)}}, "true"}},
          {"InitialDevice", {{{"MV*_UnInitialDevice(ID)", number(0)}}, "false"}}}},
        {"UnInitialDevice", REPLY(UnInitialDevice()), everyModel,
         {{{"MV*_UnInitialDevice(ID)", number(0)}}, "true"},
         "false", "false", "false", {}},
        {"IsValid", REPLY(IsValid()), everyModel,
         {{{"MV*_GetDeviceInfo(ID, 1, buf)", recording::output("\x01")}}, "true"},
         "false", "false", "false", {}},
        {"Clear", DO(Clear()), everyModel,
         {{{"MV*_Clear(ID)", {}}}, "void"}, "void", "void", "void", {}},
        {"GetSize", REPLY(GetSize()), everyModel,
         {{{"MV*_GetTotalInkPointsNumber(ID)", number(42)}}, "42"}, "0", "0", "0", {}},
        {"GetPointer", REPLY(GetPointer()), everyModel,
         {{{"MV*_GetTotalInkPointsNumber(ID)", number(2)},
           {"MV*_GetInkPointData(ID, point 0)", point(10, 20, 512, 0)},
           {"MV*_GetInkPointDataTimeInfo(ID, 0)", text("t0")},
           {"MV*_FreeInkPointDataTimeInfo(ID, #1)", {}},
           {"MV*_GetInkPointData(ID, point 1)", point(-11, 21, 0, 1)},
           {"MV*_GetInkPointDataTimeInfo(ID, 1)", text("t1")},
           {"MV*_FreeInkPointDataTimeInfo(ID, #2)", {}}},
          R"("[{"Time":"t0","bStrokeEnd":"0","pressure":"512","x":"10","y":"20"},)"
          R"({"Time":"t1","bStrokeEnd":"1","pressure":"0","x":"-11","y":"21"}]")"},
         R"("[]")", R"("[]")", R"("")",
         {{"GetInkPointData", {{{"MV*_GetTotalInkPointsNumber(ID)", number(2)}}, R"("[]")"}},
          {"GetInkPointDataTimeInfo", {{{"MV*_GetTotalInkPointsNumber(ID)", number(2)}}, R"("[]")"}},
          {"FreeInkPointDataTimeInfo", {{{"MV*_GetTotalInkPointsNumber(ID)", number(2)}}, R"("[]")"}}}},
        {"SetPenWidth", DO(SetPenWidth(7)), everyModel,
         {{{"MV*_SetPenWidth(ID, 7)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"SetPenStyle", DO(SetPenStyle(true)), everyModel,
         {{{"MV*_SetPenStyle(ID, true)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"SetPenColor", DO(SetPenColor(1, 2, 3)), everyModel,
         {{{"MV*_SetPenColor(ID, 1, 2, 3)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"Encode", REPLY(Encode(4)), everyModel,
         {{{"MV*_Base64Encode(ID, 4)", text("QUJD")}, {"MV*_Base64EncodeFree(ID, #1)", {}}}, R"("QUJD")"},
         R"("")", R"("")", R"("")", {}},
        {"Decode", REPLY(Decode(6, QStringLiteral("a.ink"), QStringLiteral("QUJD"))), everyModel,
         {{{R"(MV*_Base64Decode(ID, 6, "QUJD", "/tmp/a.ink"))", number(-9)},
           {"MV*_GetTotalDecodeInkPointsNumber(ID)", number(2)},
           {"MV*_GetDecodeInkPointData(ID, 0, 1)", number(100)},
           {"MV*_GetDecodeInkPointData(ID, 0, 2)", number(-200)},
           {"MV*_GetDecodeInkPointData(ID, 0, 3)", number(0)},
           {"MV*_GetDecodeInkPointData(ID, 1, 1)", number(101)},
           {"MV*_GetDecodeInkPointData(ID, 1, 2)", number(-201)},
           {"MV*_GetDecodeInkPointData(ID, 1, 3)", number(1)}},
          R"("[{"bStrokeEnd":"0","x":"100","y":"-200"},{"bStrokeEnd":"1","x":"101","y":"-201"}]")"},
         R"("")", R"("")", R"("")",
         {{"GetTotalDecodeInkPointsNumber",
           {{{R"(MV*_Base64Decode(ID, 6, "QUJD", "/tmp/a.ink"))", number(0)}}, R"("")"}},
          {"GetDecodeInkPointData",
           {{{R"(MV*_Base64Decode(ID, 6, "QUJD", "/tmp/a.ink"))", number(0)}}, R"("")"}}}},
        {"GetDecodeFilePath", REPLY(GetDecodeFilePath()), everyModel,
         {{}, R"("")"}, R"("")", R"("")", R"("")", {}},
        {"GetDeviceInfo", REPLY(GetDeviceInfo(7)), everyModel,
         {{{"MV*_GetDeviceInfo(ID, 7, buf)", outputInts({3, 12})}}, R"("3.12")"},
         R"("")", R"("")", R"("")", {}},
        {"SetClip", DO(SetClip(0, 40)), everyModel,
         {{{"MV*_SetSaveClipImageMargin(ID, 1, 0, 40)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"SaveDrawImage", REPLY(SaveDrawImage(2, 300, QStringLiteral("sig.png"))), everyModel,
         {{{R"(MV*_SaveDrawingImage(ID, 2, "/tmp/sig.png", 300))", number(0)}}, R"("/tmp/sig.png")"},
         R"("")", R"("")", R"("")", {}},
        {"GetInks", REPLY(GetInks()), everyModel,
         {{{"MV*_Base64Encode(ID, 3)", text("QUJD")}, {"MV*_Base64EncodeFree(ID, #1)", {}}}, image},
         R"("")", R"("")", R"("")", {}},
        {"GetOpaqueInks", REPLY(GetOpaqueInks()), everyModel,
         {{{"MV*_Base64EncodeEx(ID, 3, 0)", text("QUJD")}, {"MV*_Base64EncodeExFree(ID, #1)", {}}}, image},
         R"("")", R"("")", R"("")", {}},
        {"VersionID", REPLY(VersionID()), everyModel,
         {{{"MV*_GetHWVersion(ID, buf, 32)", outputText("V1.2")}}, R"("V1.2")"},
         R"("")", R"("")", R"("")", {}},
        {"PenID", REPLY(PenID()), withLcd,
         {{{"MV*_GetHWPenID(ID, buf, 32)", outputText("pen 7")}}, R"("pen 7")"},
         R"("")", R"("")", R"("")", {}},
        {"PadID", REPLY(PadID()), everyModel,
         {{{"MV*_GetHWPadID(ID, buf, 32)", outputText("pad 9")}}, R"("pad 9")"},
         R"("")", R"("")", R"("")", {}},
        {"DisplayDeviceInfoInLCD", DO(DisplayDeviceInfoInLCD(true)), withLcd,
         {{{"MV*_DisplayHWVersion(ID, true)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"CloseLCD", DO(CloseLCD()), withLcd,
         {{{"MV*_OpenLCD(ID, 0)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"OpenLCD", DO(OpenLCD()), withLcd,
         {{{"MV*_OpenLCD(ID, 1)", number(-1)}}, "void"}, "void", "void", "void", {}},
        {"GetDeviceConfirmOrCancelKeyStatus", REPLY(GetDeviceConfirmOrCancelKeyStatus()), everyModel,
         {{{"MV*_GetDeviceConfirmOrCancelKeyStatus(ID)", number(1)}}, "1"}, "-1", "-1", "0", {}},
        {"GetFingerPrintImage", REPLY(GetFingerPrintImage(true)), "C",
         {{{"MV*_GetFPImageBase64Data(ID, 3, 1)", text("RlA=")}, {"MV*_FreeFPImageBase64Data(ID, #1)", {}}},
          R"("[{"EventType":"3","Image":"RlA=","ImageLength":"4"}]")"},
         R"("")", R"("")", R"("")", {}},
        {"SetDisplayedFPImageAt", DO(SetDisplayedFPImageAt(1, 2, 3, 4, 5, 6)), "C",
         {{{"MV*_SetDisplayedFPImageAt(ID, null, 1, 2, 3, 4, 5, 6)", number(-1)}}, "void"},
         "void", "void", "void", {}},
        {"WPSSignConfirmed", REPLY(WPSSignConfirmed(false, QString())), everyModel,
         {{{"MV*_SetSaveClipImageMargin(ID, 1, 5, 5)", number(0)},
           {R"(MV*_SaveDrawingImage(ID, 3, "/tmp/MVeSignWPS.png", 300))", number(0)}}, R"("/tmp/MVeSignWPS.png")"},
         R"("")", R"("")", R"("")",
         {{"SetSaveClipImageMargin",
           {{{R"(MV*_SaveDrawingImage(ID, 3, "/tmp/MVeSignWPS.png", 300))", number(0)}},
            R"("/tmp/MVeSignWPS.png")"}},
          {"SaveDrawingImage", {{{"MV*_SetSaveClipImageMargin(ID, 1, 5, 5)", number(0)}}, R"("")"}}}},
        {"WPSGetInks", REPLY(WPSGetInks()), everyModel,
         {{{"MV*_Base64EncodeEx(ID, 2, 0)", text("QUJD")}, {"MV*_Base64EncodeExFree(ID, #1)", {}}}, image},
         R"("")", R"("")", R"("")", {}},
        {"GetSVGImageBase64Data", REPLY(GetSVGImageBase64Data()), everyModel,
         {{{"MV*_GetSVGImageBase64Data(ID)", text("PHN2Zz4=")}, {"MV*_FreeSVGImageBase64Data(ID, #1)", {}}},
          R"("PHN2Zz4=")"},
         R"("")", R"("")", R"("")", {}},
        {"SetRealTimeSignBase64DataCallback", REPLY(SetRealTimeSignBase64DataCallback(1, onKey, onPicture)), "A",
         {{{"MV*_SetRealTimeSignBase64DataCallback(ID, 1, callback)", number(1)}}, "true"},
         "false", "false", "false", {}},
        {"InitialWPSSignCanvas", REPLY(InitialWPSSignCanvas(800, 480)), "A",
         {{{"MV*_InitialWPSSignCanvas(ID, 800, 480)", number(1)}}, "true"},
         "false", "false", "false", {}},
    };
}

// clang-format on
const std::vector<Operation> &allOperations()
{
    static const std::vector<Operation> rows = operations();
    return rows;
}

bool Operation::belongsTo(const Model &model) const
{
    return strchr(models, model.letter);
}

static bool calls(const Outcome &outcome, const std::string &sdkName)
{
    for (const Step &step : outcome.steps) {
        if (std::string(step.call).find('_' + sdkName + '(') != std::string::npos) {
            return true;
        }
    }
    return false;
}

Outcome Operation::outcome(const Model &model, const std::string &missing) const
{
    if (!belongsTo(model)) {
        return {{}, base};
    }
    const auto special = without.find(missing);
    if (special != without.end()) {
        return special->second;
    }
    return calls(complete, missing) ? Outcome{{}, withoutSdk} : complete;
}
