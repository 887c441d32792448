/// The log lines of the device layer, whole lines with the tick masked. Where a line carries a name that is not its
/// operation's, that is how it is meant to be.

#include "base/Logging.h"
#include "base/QtCompat.h"
#include "device/SignObjAlder.h"
#include "device/SignObjManager.h"
#include "tests/sdk/support/DeviceLog.h"
#include "tests/sdk/support/ModelTestCase.h"
#include "tests/sdk/support/Operations.h"

#include <QDateTime>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

/// The lines of an operation in short: "M text" for a line of the manager's operation, "P text" for one of the pad's,
/// "P:Name text" for one that the pad writes under another operation's name.
QStringList linesOf(const Model &model, const char *operation, const QString &script)
{
    QStringList lines;
    for (const QString &entry : script.split(QLatin1Char('\n'))) {
        if (entry.isEmpty()) {
            continue;
        }
        const QString writer = entry.section(QLatin1Char(' '), 0, 0);
        const QString name =
            writer.contains(QLatin1Char(':')) ? writer.section(QLatin1Char(':'), 1) : QLatin1String(operation);
        const QString className = writer.startsWith(QLatin1Char('M'))
                                      ? QStringLiteral("SignObjManager")
                                      : QStringLiteral("SignObj") + QLatin1String(model.name);
        QString message = entry.section(QLatin1Char(' '), 1);
        message.replace(QLatin1String("MV*"), QLatin1String("MV") + QLatin1String(model.name));
        lines << QLatin1Char('[') + className + QLatin1String("::") + name + QLatin1String("()]:<T>-") + message
                     + QLatin1String(", ");
    }
    return lines;
}

const std::map<std::string, const char *> scripts = {
    {"GetAboutInfo", "M Enter...\n"
                     "P Enter...\n"
                     "P after call m_pfn_MV*_GetAboutInfo()\n"
                     "P Leave with strResult.length=13\n"
                     "M after call m_pCurrentActiveSignObj->GetAboutInfo()\n"
                     "M Leave with strResult.length=13\n"},
    {"IsValid", "M Enter...\n"
                "P Enter...\n"
                "P after call m_pfn_MV*_GetDeviceInfo(), nResult=0, bDeviceConnected=1\n"
                "P Leave, bResult=1\n"
                "M after call m_pCurrentActiveSignObj->IsValid(), bResult=1\n"
                "M Leave, bResult=1\n"},
    {"Clear", "M Enter...\n"
              "P Enter...\n"
              "P after call m_pfn_MV*_Clear()\n"
              "P Leave !\n"
              "M after call m_pCurrentActiveSignObj->Clear()\n"
              "M Leave !\n"},
    {"GetSize", "M Enter...\n"
                "P Enter...\n"
                "P after call m_pfn_MV*_GetTotalInkPointsNumber(), nInksCount=42\n"
                "P Leave, nInksCount=42\n"
                "M after call m_pCurrentActiveSignObj->GetSize(), nInksCount=42\n"
                "M Leave, nInksCount=42\n"},
    {"GetPointer", "M Enter...\n"
                   "P Enter\n"
                   "P:GetSize Enter...\n"
                   "P:GetSize after call m_pfn_MV*_GetTotalInkPointsNumber(), nInksCount=2\n"
                   "P:GetSize Leave, nInksCount=2\n"
                   "P Leave, strJsonDocInkPointerList.length=132\n"
                   "M after call m_pCurrentActiveSignObj->GetPointer()\n"
                   "M Leave with strResult.length=132\n"},
    {"SetPenWidth", "M Enter, nWidth=7\n"
                    "P Enter, nWidth=7\n"
                    "P after call m_pfn_MV*_SetPenWidth(), nResult=-1\n"
                    "P Leave !\n"
                    "M after call m_pCurrentActiveSignObj->SetPenWidth()\n"
                    "M Leave !\n"},
    {"SetPenStyle", "M Enter, bPressureOn=1\n"
                    "P Enter, bPressureOn=1\n"
                    "P after call m_pfn_MV*_SetPenStyle(), nResult=-1\n"
                    "P Leave !\n"
                    "M after call m_pCurrentActiveSignObj->SetPenStyle()\n"
                    "M Leave !\n"},
    {"SetPenColor", "M Enter, nR=1, nG=2, nB=3\n"
                    "P Enter, nR=1, nG=2, nB=3\n"
                    "P after call m_pfn_MV*_SetPenColor(), nResult=-1\n"
                    "P Leave !\n"
                    "M after call m_pCurrentActiveSignObj->SetPenColor()\n"
                    "M Leave !\n"},
    {"Encode", "M Enter, nType=4\n"
               "P Enter\n"
               "P after call m_pfn_MV*_Base64EncodeFree()\n"
               "P Leave with strResult.length=4\n"
               "M after call m_pCurrentActiveSignObj->Encode()\n"
               "M Leave with strResult.length=4\n"},
    {"Decode", "M Enter, nType=6, strPath=a.ink, strData.length=4\n"
               "P Enter, nType=6, strPath=a.ink, strData.length=4\n"
               "P after call m_pfn_MV*_Base64Decode(), nResult=-9\n"
               "P Leave with strResult.length=81\n"
               "M after call m_pCurrentActiveSignObj->Decode()\n"
               "M Leave with strResult.length=81\n"},
    {"GetDecodeFilePath", "M Enter...\n"
                          "P Enter...\n"
                          "P Leave with strResult.length=0\n"
                          "M after call m_pCurrentActiveSignObj->GetDecodeFilePath()\n"
                          "M Leave with strResult.length=0\n"},
    {"GetDeviceInfo", "M Enter, nType=7\n"
                      "P Enter, nType=7\n"
                      "P after call m_pfn_MV*_GetDeviceInfo(), nResult=0\n"
                      "P Leave with strResult.length=4, nResult=0\n"
                      "M after call m_pCurrentActiveSignObj->GetDeviceInfo()\n"
                      "M Leave with strResult.length=4\n"},
    {"SetClip", "M Enter, nWidth=0, nHeight=40\n"
                "P Enter, nWidth=0, nHeight=40\n"
                "P after call m_pfn_MV*_SetSaveClipImageMargin(), nResult=-1\n"
                "P Leave !\n"
                "M after call m_pCurrentActiveSignObj->SetClip()\n"
                "M Leave !\n"},
    {"SaveDrawImage", "M Enter, nType=2, nDPI=300, strPath=sig.png\n"
                      "P Enter, nType=2, nDPI=300, strPath=sig.png\n"
                      "P after call m_pfn_MV*_SaveDrawingImage(), nResult=0\n"
                      "P Leave with strResult.length=12\n"
                      "M after call m_pCurrentActiveSignObj->SaveDrawImage()\n"
                      "M Leave with strResult.length=12\n"},
    {"GetInks", "M Enter...\n"
                "P Enter\n"
                "P after call m_pfn_MV*_Base64EncodeFree()\n"
                "P Leave with strResult.length=52\n"
                "M after call m_pCurrentActiveSignObj->GetInks()\n"
                "M Leave with strResult.length=52\n"},
    {"GetOpaqueInks", "M Enter...\n"
                      "P Enter\n"
                      "P after call m_pfn_MV*_Base64EncodeExFree()\n"
                      "P Leave with strResult.length=52\n"
                      "M after call m_pCurrentActiveSignObj->GetOpaqueInks()\n"
                      "M Leave with strResult.length=52\n"},
    {"VersionID", "M Enter...\n"
                  "P Enter...\n"
                  "P after call m_pfn_MV*_GetHWVersion(), nResult=0\n"
                  "P Leave with strResult.length=4\n"
                  "M after call m_pCurrentActiveSignObj->VersionID()\n"
                  "M Leave with strResult.length=4\n"},
    {"PenID", "M Enter...\n"
              "P Enter...\n"
              "P after call m_pfn_MV*_GetHWPenID(), nResult=0\n"
              "P Leave with strResult.length=5\n"
              "M after call m_pCurrentActiveSignObj->PenID()\n"
              "M Leave with strResult.length=5\n"},
    {"PadID", "M Enter...\n"
              "P Enter...\n"
              "P after call m_pfn_MV*_GetHWPadID(), nResult=0\n"
              "P Leave with strResult.length=5\n"
              "M after call m_pCurrentActiveSignObj->PadID()\n"
              "M Leave with strResult.length=5\n"},
    {"DisplayDeviceInfoInLCD", "M Enter, bShow=1\n"
                               "P Enter, bShow=1\n"
                               "P after call m_pfn_MV*_DisplayHWVersion(), nResult=-1\n"
                               "P Leave !\n"
                               "M after call m_pCurrentActiveSignObj->DisplayDeviceInfoInLCD()\n"
                               "M Leave !\n"},
    {"CloseLCD", "M Enter...\n"
                 "P Enter...\n"
                 "P after call m_pfn_MV*_OpenLCD(), nResult=-1\n"
                 "P Leave !\n"
                 "M after call m_pCurrentActiveSignObj->CloseLCD()\n"
                 "M Leave !\n"},
    {"OpenLCD", "M Enter...\n"
                "P Enter...\n"
                "P after call m_pfn_MV*_OpenLCD(), nResult=-1\n"
                "P Leave !\n"
                "M after call m_pCurrentActiveSignObj->OpenLCD()\n"
                "M Leave !\n"},
    {"GetDeviceConfirmOrCancelKeyStatus",
     "M Enter...\n"
     "P Enter...\n"
     "P after call m_pfn_MV*_GetDeviceConfirmOrCancelKeyStatus(), nKeyStatus=1\n"
     "P Leave with nKeyStatus=1\n"
     "M after call m_pCurrentActiveSignObj->GetDeviceConfirmOrCancelKeyStatus(), nKeyStatus=1\n"
     "M Leave with nKeyStatus=1\n"},
    {"GetFingerPrintImage", "M Enter, bFPImageOnly=1\n"
                            "P Enter\n"
                            "P (strResult != m_strLastFPImageBase64Content)\n"
                            "P after call m_pfn_MV*_FreeFPImageBase64Data()\n"
                            "P Leave with strResult.length=52\n"
                            "M after call m_pCurrentActiveSignObj->GetFingerPrintImage()\n"
                            "M Leave with strResult.length=52\n"},
    {"SetDisplayedFPImageAt", "M Enter, nCanvasWidth=1, nCanvasHeight=2, nFPLeft=3, nFPTop=4, nFPWidth=5, nFPHeight=6\n"
                              "P Enter, nCanvasWidth=1, nCanvasHeight=2, nFPLeft=3, nFPTop=4, nFPWidth=5, nFPHeight=6\n"
                              "P after call m_pfn_MV*_SetDisplayedFPImageAt(), nResult=-1\n"
                              "P Leave !\n"
                              "M after call m_pCurrentActiveSignObj->SetDisplayedFPImageAt()\n"
                              "M Leave !\n"},
    {"WPSSignConfirmed", "M Enter, bEnableDateTime=0, strName=\n"
                         "P Enter, bEnableDateTime=0, strName=\n"
                         "P:SetClip Enter, nWidth=5, nHeight=5\n"
                         "P:SetClip after call m_pfn_MV*_SetSaveClipImageMargin(), nResult=0\n"
                         "P:SetClip Leave !\n"
                         "P:SaveDrawImage Enter, nType=3, nDPI=300, strPath=MVeSignWPS.png\n"
                         "P:SaveDrawImage after call m_pfn_MV*_SaveDrawingImage(), nResult=0\n"
                         "P:SaveDrawImage Leave with strResult.length=19\n"
                         "P after call SaveDrawImage(), strResult.length=19\n"
                         "P Leave with strResult.length=19\n"
                         "M after call m_pCurrentActiveSignObj->SaveDrawImage()\n"
                         "M Leave with strResult.length=19\n"},
    {"WPSGetInks", "M Enter...\n"
                   "P Enter\n"
                   "P after call m_pfn_MV*_Base64EncodeExFree()\n"
                   "P Leave with strResult.length=52\n"
                   "M after call m_pCurrentActiveSignObj->WPSGetInks()\n"
                   "M Leave with strResult.length=52\n"},
    {"GetSVGImageBase64Data", "M Enter...\n"
                              "P Enter\n"
                              "P after call m_pfn_MV*_FreeSVGImageBase64Data()\n"
                              "P Leave with strResult.length=8\n"
                              "M after call m_pCurrentActiveSignObj->GetSVGImageBase64Data()\n"
                              "M Leave with strResult.length=8\n"},
    {"InitialWPSSignCanvas", "M Enter, nWidth=800, nHeight=480\n"
                             "P Enter, nWidth=800, nHeight=480\n"
                             "P after call m_pfn_MV*_InitialWPSSignCanvas(), bResult=1\n"
                             "P Leave, bResult=1\n"
                             "M after call m_pCurrentActiveSignObj->InitialWPSSignCanvas(), bResult=1\n"
                             "M Leave, bResult=1\n"},
};

} // namespace

Q_DECLARE_METATYPE(recording::Answer)
Q_DECLARE_METATYPE(std::function<void(SignObjInterface &)>)

class TestDeviceLog : public ModelTestCase
{
    Q_OBJECT

public:
    using ModelTestCase::ModelTestCase;

private Q_SLOTS:
    void offWritesNoFile();
    void openingAndClosing();
    void reopening();
    void operations();
    void operationTheModelLacks();
    void withoutObject();
    void registeringCallbacks();
    void keyEvents();
    void resultsOfTheLibrary_data();
    void resultsOfTheLibrary();
    void negativeClip();
    void unchangedFingerprint();
    void noLibrary();
    void missingName_data();
    void missingName();
    void wpsPicture_data();
    void wpsPicture();
    void wpsPictureThatCannotBeWritten();
    void longMessageIsCut();
    void argumentsAreNoFormats();
    void everyLineHasItsForm();

private:
    void expectOpening() { expectCall("MV*_InitialDevice(ID, null, 0, 0, 800, 480)", number(1)); }
    QString className() const { return QStringLiteral("SignObj") + QLatin1String(model.name); }
};

static void removeWpsFiles()
{
    QFile::remove(QStringLiteral("/tmp/MVeSignWPS.png"));
    QFile::remove(QStringLiteral("/tmp/MVeSignWPS_dt_name.png"));
    QDir().rmdir(QStringLiteral("/tmp/MVeSignWPS_dt_name.png"));
}

void TestDeviceLog::offWritesNoFile()
{
    DeviceLog log;
    g_bEnableLog = false;
    expectOpening();
    expectCall("MV*_Clear(ID)");
    expectCall("MV*_UnInitialDevice(ID)");
    {
        SignObjManager manager;
        manager.InitialDevice(model.nDeviceID, 800, 480);
        manager.Clear();
    }
    QVERIFY(!DeviceLog::fileExists());
    QVERIFY(!DeviceLog::mainThreadFileExists());

    SignObjManager manager;
    g_bEnableLog = true; // takes effect at the next line
    manager.Clear();
    QCOMPARE(log.lines(), QStringList({QStringLiteral("[SignObjManager::Clear()]:<T>-Enter..., "),
                                       QStringLiteral("[SignObjManager::Clear()]:<T>-Leave !, ")}));
    QVERIFY(!DeviceLog::mainThreadFileExists());
    g_bEnableLog = false;
}

void TestDeviceLog::openingAndClosing()
{
    DeviceLog log;
    expectOpening();
    {
        SignObjManager manager;
        QCOMPARE(log.lines(), QStringList({QStringLiteral("[SignObjManager::SignObjManager()]:<T>-Enter..., "),
                                           QStringLiteral("[SignObjManager::SignObjManager()]:<T>-Leave !, ")}));
        manager.InitialDevice(model.nDeviceID, 800, 480);
        const QString name = className();
        const QString opening = QStringLiteral("M Enter, nID=%1, nWidth=800, nHeight=480\n"
                                               "P:%2 Enter...\n"
                                               "P:LoadMVSignPadSDK Enter...\n"
                                               "P:LoadMVSignPadSDK Leave, bRet=1\n"
                                               "P:%2 Leave, bResult=1\n"
                                               "P Enter, nID=%1, nWidth=800, nHeight=480\n"
                                               "P after call m_pfn_MV*_InitialDevice(), bResult=1\n"
                                               "P Leave, bResult=1\n"
                                               "M after call m_pCurrentActiveSignObj->InitialDevice(), bResult=1\n"
                                               "M Leave, bResult=1")
                                    .arg(model.nDeviceID)
                                    .arg(name);
        QCOMPARE(log.lines(), linesOf(model, "InitialDevice", opening));
        expectCall("MV*_UnInitialDevice(ID)", number(-1));
    }
    const QString closing = QStringLiteral("M:~SignObjManager Enter...\n"
                                           "M Enter...\n"
                                           "P Enter...\n"
                                           "P after call m_pfn_MV*_UnInitialDevice(), nResult=-1\n"
                                           "P Leave, bResult=0\n"
                                           "M after call m_pCurrentActiveSignObj->UnInitialDevice(), bResult=0\n"
                                           "P:~%1 Enter...\n"
                                           "P:~%1 Leave !\n"
                                           "M after call m_pCurrentActiveSignObj = nullptr...\n"
                                           "M Leave, bResult=0\n"
                                           "M:~SignObjManager Leave !")
                                .arg(className());
    QCOMPARE(log.lines(), linesOf(model, "UnInitialDevice", closing));
}

void TestDeviceLog::reopening()
{
    DeviceLog log;
    SignObjManager manager;
    expectOpening();
    manager.InitialDevice(model.nDeviceID, 800, 480);
    log.lines();
    expectCall("MV*_UnInitialDevice(ID)", number(0));
    manager.InitialDevice(9, -1, 0);
    const QString reopening = QStringLiteral("M Enter, nID=9, nWidth=-1, nHeight=0\n"
                                             "P:UnInitialDevice Enter...\n"
                                             "P:UnInitialDevice after call m_pfn_MV*_UnInitialDevice(), nResult=0\n"
                                             "P:UnInitialDevice Leave, bResult=1\n"
                                             "M after call m_pCurrentActiveSignObj->UnInitialDevice()\n"
                                             "P:~%1 Enter...\n"
                                             "P:~%1 Leave !\n"
                                             "M after call m_pCurrentActiveSignObj = nullptr...\n"
                                             "M Leave, bResult=0")
                                  .arg(className());
    QCOMPARE(log.lines(), linesOf(model, "InitialDevice", reopening));
}

void TestDeviceLog::operations()
{
    DeviceLog log;
    int compared = 0;
    for (const Operation &operation : allOperations()) {
        const auto script = scripts.find(operation.name);
        if (script == scripts.end() || !operation.belongsTo(model)) {
            continue;
        }
        SignObjManager manager;
        expectOpening();
        manager.InitialDevice(model.nDeviceID, 800, 480);
        for (const Step &step : operation.complete.steps) {
            expectCall(step.call, step.answer);
        }
        log.lines();
        operation.onManager(manager, model.nDeviceID);
        QCOMPARE(log.lines(), linesOf(model, operation.name, QString::fromUtf8(script->second)));
        ++compared;
        expectCall("MV*_UnInitialDevice(ID)");
        manager.UnInitialDevice();
        QVERIFY(recorder().finish().empty());
    }
    // Opening, closing and registering callbacks have tests of their own.
    QCOMPARE(scripts.size(), size_t(29));
    QCOMPARE(compared, model.letter == 'C' ? 28 : model.letter == 'A' ? 27 : model.letter == 'B' ? 26 : 22);
}

void TestDeviceLog::operationTheModelLacks()
{
    DeviceLog log;
    SignObjManager manager;
    expectOpening();
    manager.InitialDevice(model.nDeviceID, 800, 480);
    log.lines();
    if (model.letter != 'C') {
        manager.GetFingerPrintImage(true);
        QCOMPARE(log.lines(), linesOf(model, "GetFingerPrintImage",
                                      QStringLiteral("M Enter, bFPImageOnly=1\n"
                                                     "M after call m_pCurrentActiveSignObj->GetFingerPrintImage()\n"
                                                     "M Leave with strResult.length=0")));
    }
    if (model.letter != 'A') {
        manager.InitialWPSSignCanvas(1, 2);
        QCOMPARE(log.lines(),
                 linesOf(model, "InitialWPSSignCanvas",
                         QStringLiteral("M Enter, nWidth=1, nHeight=2\n"
                                        "M after call m_pCurrentActiveSignObj->InitialWPSSignCanvas(), bResult=0\n"
                                        "M Leave, bResult=0")));
    }
    if (!hasPenAndLcd()) {
        manager.OpenLCD();
        QCOMPARE(log.lines(), linesOf(model, "OpenLCD",
                                      QStringLiteral("M Enter...\n"
                                                     "M after call m_pCurrentActiveSignObj->OpenLCD()\n"
                                                     "M Leave !")));
    }
    expectCall("MV*_UnInitialDevice(ID)");
}

void TestDeviceLog::withoutObject()
{
    SignObjManager manager;
    DeviceLog log;
    manager.GetPointer();
    QCOMPARE(log.lines(), linesOf(model, "GetPointer", QStringLiteral("M Enter...\nM Leave with strResult.length=2")));
    manager.GetDeviceConfirmOrCancelKeyStatus();
    QCOMPARE(log.lines(), linesOf(model, "GetDeviceConfirmOrCancelKeyStatus",
                                  QStringLiteral("M Enter...\nM Leave with nKeyStatus=-1")));
    manager.GetSize();
    QCOMPARE(log.lines(), linesOf(model, "GetSize", QStringLiteral("M Enter...\nM Leave, nInksCount=0")));
    manager.UnInitialDevice();
    QCOMPARE(log.lines(), linesOf(model, "UnInitialDevice", QStringLiteral("M Enter...\nM Leave, bResult=0")));
    manager.CloseLCD();
    QCOMPARE(log.lines(), linesOf(model, "CloseLCD", QStringLiteral("M Enter...\nM Leave !")));
    manager.SaveDrawImage(2, 300, QStringLiteral("/home/u/sig.png"));
    QCOMPARE(log.lines(), linesOf(model, "SaveDrawImage",
                                  QStringLiteral("M Enter, nType=2, nDPI=300, strPath=/home/u/sig.png\n"
                                                 "M Leave with strResult.length=0")));
}

static void onKey(int /*nEventID*/) {}
static void onPicture(char * /*pData*/) {}

void TestDeviceLog::registeringCallbacks()
{
    DeviceLog log;
    SignObjManager manager;
    expectOpening();
    manager.InitialDevice(model.nDeviceID, 800, 480);
    log.lines();
    const bool registers = model.letter == 'A';
    if (registers) {
        expectCall("MV*_SetRealTimeSignBase64DataCallback(ID, 4, callback)", number(1));
    }
    manager.SetRealTimeSignBase64DataCallback(4, onKey, onPicture);
    const QStringList lines = log.lines();
    const auto hex = [](std::uintptr_t address) { return QString::number(address & 0xffffffff, 16); };
    const QString arguments =
        QStringLiteral("nType=4, pfnSignPadEventCallback=%1,pfnSignBase64DataCallback=%2\n")
            .arg(hex(reinterpret_cast<std::uintptr_t>(onKey)), hex(reinterpret_cast<std::uintptr_t>(onPicture)));
    const QString enter = QStringLiteral("M Enter, ") + arguments;
    const QString leave =
        QStringLiteral("M after call m_pCurrentActiveSignObj->SetRealTimeSignBase64DataCallback(), bRet=%1\n"
                       "M Leave with bRet=%1")
            .arg(registers ? 1 : 0);
    const QString ofThePad = QStringLiteral("P Enter, ") + arguments
                             + QStringLiteral("P after call m_pfn_MV*_SetRealTimeSignBase64DataCallback(), bRet=1\n"
                                              "P Leave with bRet=1\n");
    QCOMPARE(lines,
             linesOf(model, "SetRealTimeSignBase64DataCallback", enter + (registers ? ofThePad : QString()) + leave));
    expectCall("MV*_UnInitialDevice(ID)");
}

void TestDeviceLog::keyEvents()
{
    SignObjAlder alder;
    DeviceLog log;
    const auto linesAround = [](const QString &event, const QStringList &between) {
        const QString line = QStringLiteral("[SignObjAlder::ProcessSignPadEvent()]:<T>-%1, ");
        QStringList lines{line.arg(QStringLiteral("Enter, nEventID=") + event)};
        for (const QString &text : between)
            lines += line.arg(text);
        return lines << line.arg(QStringLiteral("Leave !"));
    };
    alder.ProcessSignPadEvent(1);
    QCOMPARE(log.lines(), linesAround(QStringLiteral("1"), {}));
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    alder.SetRealTimeSignBase64DataCallback(1, onKey, onPicture);
    log.lines();
    alder.ProcessSignPadEvent(1);
    QCOMPARE(log.lines(), linesAround(QStringLiteral("1"), {QStringLiteral("nEventID == SIGNPAD_ENTER_BUTTON")}));
    alder.ProcessSignPadEvent(0);
    QCOMPARE(log.lines(), linesAround(QStringLiteral("0"), {QStringLiteral("nEventID == SIGNPAD_CANCEL_BUTTON")}));
    alder.ProcessSignPadEvent(5);
    QCOMPARE(log.lines(), linesAround(QStringLiteral("5"), {}));
    char picture[] = "QUJD";
    alder.ProcessSignBase64Data(picture);
    QCOMPARE(log.lines(), (QStringList{QStringLiteral("[SignObjAlder::ProcessSignBase64Data()]:<T>-Enter..., "),
                                       QStringLiteral("[SignObjAlder::ProcessSignBase64Data()]:<T>-Leave !, ")}));
}

void TestDeviceLog::resultsOfTheLibrary_data()
{
    using Ask = std::function<void(SignObjInterface &)>;
    QTest::addColumn<Ask>("ask");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("call");
    QTest::addColumn<recording::Answer>("answer");
    QTest::addColumn<QString>("script");
    const auto row = [](const char *operation, const Ask &ask, const char *call, const recording::Answer &answer,
                        const char *script) {
        QTest::newRow(script) << ask << QString::fromLatin1(operation) << QString::fromLatin1(call) << answer
                              << QString::fromLatin1(script);
    };
    const Ask isValid = [](SignObjInterface &pad) { pad.IsValid(); };
    row("IsValid", isValid, "MV*_GetDeviceInfo(ID, 1, buf)", recording::output("\x01", -7),
        "P Enter...\nP after call m_pfn_MV*_GetDeviceInfo(), nResult=-7, bDeviceConnected=1\nP Leave, bResult=0");
    row("IsValid", isValid, "MV*_GetDeviceInfo(ID, 1, buf)", recording::output(std::string(1, '\0'), 0),
        "P Enter...\nP after call m_pfn_MV*_GetDeviceInfo(), nResult=0, bDeviceConnected=0\nP Leave, bResult=0");
    row(
        "InitialDevice", [](SignObjInterface &pad) { pad.InitialDevice(9, 1, 2); },
        "MV*_InitialDevice(9, null, 0, 0, 1, 2)", number(0),
        "P Enter, nID=9, nWidth=1, nHeight=2\nP after call m_pfn_MV*_InitialDevice(), bResult=0\nP Leave, bResult=0");
    row(
        "UnInitialDevice", [](SignObjInterface &pad) { pad.UnInitialDevice(); }, "MV*_UnInitialDevice(ID)", number(5),
        "P Enter...\nP after call m_pfn_MV*_UnInitialDevice(), nResult=5\nP Leave, bResult=0");
    row(
        "GetDeviceInfo", [](SignObjInterface &pad) { pad.GetDeviceInfo(4); }, "MV*_GetDeviceInfo(ID, 4, buf)",
        recording::outputInts({12}, -3),
        "P Enter, nType=4\nP after call m_pfn_MV*_GetDeviceInfo(), nResult=-3\n"
        "P Leave with strResult.length=4, nResult=-3");
    row(
        "VersionID", [](SignObjInterface &pad) { pad.VersionID(); }, "MV*_GetHWVersion(ID, buf, 32)",
        recording::outputText("V1", 8),
        "P Enter...\nP after call m_pfn_MV*_GetHWVersion(), nResult=8\nP Leave with strResult.length=2");
    row(
        "SetPenWidth", [](SignObjInterface &pad) { pad.SetPenWidth(3); }, "MV*_SetPenWidth(ID, 3)", number(6),
        "P Enter, nWidth=3\nP after call m_pfn_MV*_SetPenWidth(), nResult=6\nP Leave !");
    row(
        "SaveDrawImage", [](SignObjInterface &pad) { pad.SaveDrawImage(1, 72, QStringLiteral("a")); },
        "MV*_SaveDrawingImage(ID, 1, \"/tmp/a\", 72)", number(-42),
        "P Enter, nType=1, nDPI=72, strPath=a\nP after call m_pfn_MV*_SaveDrawingImage(), nResult=-42\n"
        "P Leave with strResult.length=3");
}

/// What the library says stands in the log, whatever it is.
void TestDeviceLog::resultsOfTheLibrary()
{
    QFETCH(std::function<void(SignObjInterface &)>, ask);
    QFETCH(QString, operation);
    QFETCH(QString, call);
    QFETCH(recording::Answer, answer);
    QFETCH(QString, script);
    pad();
    DeviceLog log;
    expectCall(call.toLatin1().constData(), answer);
    ask(pad());
    QCOMPARE(log.lines(), linesOf(model, operation.toLatin1().constData(), script));
}

void TestDeviceLog::negativeClip()
{
    pad();
    DeviceLog log;
    pad().SetClip(-1, 50);
    QCOMPARE(log.lines(), linesOf(model, "SetClip",
                                  QStringLiteral("P Enter, nWidth=-1, nHeight=50\n"
                                                 "P after call m_pfn_MV*_SetSaveClipImageMargin(), nResult=-1\n"
                                                 "P Leave !")));
}

void TestDeviceLog::unchangedFingerprint()
{
    const Model &cedar = allModels[2];
    const auto sensor = newPad(cedar);
    for (const int serial : {1, 2}) {
        DeviceLog log;
        expect("MVCedar_GetFPImageBase64Data(7, 3, 0)", text("RlA="));
        expect("MVCedar_FreeFPImageBase64Data(7, #" + std::to_string(serial) + ")");
        sensor->GetFingerPrintImage(false);
        QCOMPARE(log.lines(), linesOf(cedar, "GetFingerPrintImage",
                                      serial == 1 ? QStringLiteral("P Enter\n"
                                                                   "P (strResult != m_strLastFPImageBase64Content)\n"
                                                                   "P after call m_pfn_MV*_FreeFPImageBase64Data()\n"
                                                                   "P Leave with strResult.length=52")
                                                  : QStringLiteral("P Enter\n"
                                                                   "P after call m_pfn_MV*_FreeFPImageBase64Data()\n"
                                                                   "P Leave with strResult.length=0")));
    }
}

void TestDeviceLog::noLibrary()
{
    const QTemporaryDir empty;
    QVERIFY(QDir::setCurrent(empty.path()));
    DeviceLog log;
    pad();
    const QStringList lines = log.lines();
    const QString name = className();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QStringLiteral("[%1::%1()]:<T>-Enter..., ").arg(name));
    QCOMPARE(lines[1], QStringLiteral("[%1::LoadMVSignPadSDK()]:<T>-Enter..., ").arg(name));
    QCOMPARE(lines[2],
             QStringLiteral("[WebSocketService::LoadMVSignPadSDK()]:<T>-libmvsignpadsdk.so' Library is not loaded, "
                            "stdstrErrorString=Cannot load library ./libmvsignpadsdk.so: (./libmvsignpadsdk.so: "
                            "cannot open shared object file: No such file or directory), "));
    QCOMPARE(lines[3], QStringLiteral("[%1::LoadMVSignPadSDK()]:<T>-Leave, bRet=0, ").arg(name));
    QCOMPARE(lines[4], QStringLiteral("[%1::%1()]:<T>-Leave, bResult=0, ").arg(name));
}

void TestDeviceLog::missingName_data()
{
    QTest::addColumn<QString>("library");
    QTest::newRow("in the middle") << QStringLiteral("without-AboutBox");
    QTest::newRow("the last one") << QStringLiteral("without-Base64EncodeExFree");
}

void TestDeviceLog::missingName()
{
    QFETCH(QString, library);
    useLibrary(library);
    DeviceLog log;
    pad();
    const QStringList lines = log.lines();
    const QString name = className();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QStringLiteral("[%1::%1()]:<T>-Enter..., ").arg(name));
    QCOMPARE(lines[1], QStringLiteral("[%1::LoadMVSignPadSDK()]:<T>-Enter..., ").arg(name));
    QCOMPARE(lines[2], QStringLiteral("[WebSocketService::LoadMVSignPadSDK()]:<T>-APIs of 'libmvsignpadsdk.so' Library "
                                      "loaded Failed, stdstrErrorString=Unknown error, "));
    QCOMPARE(lines[3], QStringLiteral("[%1::LoadMVSignPadSDK()]:<T>-Leave, bRet=0, ").arg(name));
    QCOMPARE(lines[4], QStringLiteral("[%1::%1()]:<T>-Leave, bResult=0, ").arg(name));
}

void TestDeviceLog::wpsPicture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("withDate");
    QTest::addColumn<QString>("texts");
    QTest::newRow("both") << QStringLiteral("王小明") << true << QStringLiteral("strName and strCurrentDateTime");
    QTest::newRow("date only") << QString() << true << QStringLiteral("strCurrentDateTime");
    QTest::newRow("name only") << QStringLiteral("Ada") << false << QStringLiteral("strName");
}

void TestDeviceLog::wpsPicture()
{
    QFETCH(QString, name);
    QFETCH(bool, withDate);
    QFETCH(QString, texts);
    removeWpsFiles();
    pad();
    recording::Answer save = number(0);
    save.effect = [] { QImage(1000, 20, QImage::Format_ARGB32).save(QStringLiteral("/tmp/MVeSignWPS.png")); };
    const auto now = [] { return QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd hh:mm:ss")); };

    DeviceLog log;
    QString date;
    do {
        log.lines();
        date = now();
        expectCall("MV*_SetSaveClipImageMargin(ID, 1, 5, 5)");
        expectCall(R"(MV*_SaveDrawingImage(ID, 3, "/tmp/MVeSignWPS.png", 300))", save);
        pad().WPSSignConfirmed(withDate, name);
    } while (date != now());

    const QFontMetrics metrics(QFont(QStringLiteral("times"), 24));
    const int nameWidth = name.isEmpty() ? 0 : TextWidth(metrics, name);
    const int textWidth = std::max(nameWidth, withDate ? TextWidth(metrics, date) : 0);
    const int textHeight = (withDate && !name.isEmpty() ? 2 : 1) * metrics.height();
    const QString script = QStringLiteral("P Enter, bEnableDateTime=%1, strName=%2\n"
                                          "P:SetClip Enter, nWidth=5, nHeight=5\n"
                                          "P:SetClip after call m_pfn_MV*_SetSaveClipImageMargin(), nResult=0\n"
                                          "P:SetClip Leave !\n"
                                          "P:SaveDrawImage Enter, nType=3, nDPI=300, strPath=MVeSignWPS.png\n"
                                          "P:SaveDrawImage after call m_pfn_MV*_SaveDrawingImage(), nResult=0\n"
                                          "P:SaveDrawImage Leave with strResult.length=19\n"
                                          "P after call SaveDrawImage(), strResult.length=19\n"
                                          "P strCurrentDateTime=%3\n"
                                          "P nSignImageWidth=1000, nSignImageHeight=20\n"
                                          "P:GetAboutInfo %4 existed..., nTargetSignWidth=%5, nTargetSignHeight=%6\n"
                                          "P:GetAboutInfo nTargetSignWidth=1000, nTargetSignHeight=%7\n"
                                          "P:GetAboutInfo after call targetSignImage.save(strTargetSignImageFilePath), "
                                          "bRet=1\n"
                                          "P Leave with strResult.length=27")
                               .arg(withDate ? 1 : 0)
                               .arg(name, date, texts)
                               .arg(textWidth)
                               .arg(textHeight)
                               .arg(textHeight + 20);
    QCOMPARE(log.lines(), linesOf(model, "WPSSignConfirmed", script));
    removeWpsFiles();
}

void TestDeviceLog::wpsPictureThatCannotBeWritten()
{
    removeWpsFiles();
    QVERIFY(QDir().mkdir(QStringLiteral("/tmp/MVeSignWPS_dt_name.png")));
    pad();
    DeviceLog log;
    expectCall("MV*_SetSaveClipImageMargin(ID, 1, 5, 5)");
    expectCall(R"(MV*_SaveDrawingImage(ID, 3, "/tmp/MVeSignWPS.png", 300))");
    pad().WPSSignConfirmed(false, QStringLiteral("Ada"));
    const QStringList lines = log.lines();
    QCOMPARE(lines.size(), 14); // as of a picture that can be written
    QCOMPARE(lines.mid(12),
             linesOf(model, "WPSSignConfirmed",
                     QStringLiteral("P:GetAboutInfo after call targetSignImage.save(strTargetSignImageFilePath), "
                                    "bRet=0\n"
                                    "P Leave with strResult.length=2")));
    removeWpsFiles();
}

void TestDeviceLog::longMessageIsCut()
{
    SignObjManager manager;
    DeviceLog log;
    manager.SaveDrawImage(2, 300, QString(5000, QLatin1Char('x')));
    QVERIFY(DeviceLog::fileExists());
    QFile file(QStringLiteral("/tmp/mvsignpadsdk_wssvr_inthread.log"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray line = file.readLine();
    const QByteArray tag = "[SignObjManager::SaveDrawImage()]:";
    QVERIFY(line.startsWith(tag));
    QVERIFY(line.endsWith("xxx, \n"));
    QCOMPARE(line.size(), tag.size() + 255 + 3); // the message without its terminator, ", " and the line break
}

void TestDeviceLog::argumentsAreNoFormats()
{
    SignObjManager manager;
    DeviceLog log;
    manager.Decode(1, QStringLiteral("%s%n%d%100000d"), QStringLiteral("%s"));
    QCOMPARE(log.lines(), linesOf(model, "Decode",
                                  QStringLiteral("M Enter, nType=1, strPath=%s%n%d%100000d, strData.length=2\n"
                                                 "M Leave with strResult.length=0")));
    manager.WPSSignConfirmed(true, QStringLiteral("%n%s"));
    QCOMPARE(log.lines(), linesOf(model, "WPSSignConfirmed",
                                  QStringLiteral("M Enter, bEnableDateTime=1, strName=%n%s\n"
                                                 "M Leave with strResult.length=0")));
}

void TestDeviceLog::everyLineHasItsForm()
{
    DeviceLog log;
    SignObjManager manager;
    expectOpening();
    manager.InitialDevice(model.nDeviceID, 800, 480);
    for (int i = 0; i < 20; ++i) {
        expectCall("MV*_Clear(ID)");
        manager.Clear();
    }
    expectCall("MV*_UnInitialDevice(ID)");
    manager.UnInitialDevice();

    const QList<qint64> ticks = DeviceLog::ticks();
    QVERIFY(ticks.size() > 120);
    QVERIFY(ticks.first() > 0);
    QVERIFY(std::is_sorted(ticks.begin(), ticks.end()));
    QVERIFY(ticks.last() <= qint64(GetTickCount()));
    const QRegularExpression form(QStringLiteral("^\\[(SignObjManager|SignObj%1)::~?[A-Za-z]+\\(\\)\\]:<T>-.+, $")
                                      .arg(QLatin1String(model.name)));
    for (const QString &line : log.lines()) {
        QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
    }
}

MV_TEST_EVERY_MODEL(QGuiApplication, TestDeviceLog)
#include "tst_devicelog.moc"
