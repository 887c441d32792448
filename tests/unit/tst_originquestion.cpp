// The windows that ask about origins, without the service: what they say, and which input counts.
#include "service/AccessPolicy.h"
#include "service/OriginDesk.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/ShownWindows.h"
#include "tests/unit/support/WarningTrap.h"
#include "tray/OriginQuestion.h"
#include "tray/OriginQuestions.h"
#include "tray/TrayTexts.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>

#include <thread>

namespace {

const char page[] = "https://sign.example.org";

const OriginPatience forever = {0, patienceMs};
/// The window answers to nothing for as long as the test takes.
const OriginPatience blind = {patienceMs, patienceMs};

QString longOrigin()
{
    return QStringLiteral("https://sign.example.org.") + QString(254, QLatin1Char('w'))
           + QStringLiteral(".example.net:8443");
}

QPushButton *button(const QWidget &window, const char *text)
{
    const QList<QPushButton *> buttons = window.findChildren<QPushButton *>();
    for (QPushButton *candidate : buttons)
        if (candidate->text() == QString::fromUtf8(text))
            return candidate;
    return nullptr;
}

/// By way of the window, as the display would.
void click(QWidget &window, const QPushButton &target)
{
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      target.mapTo(&window, target.rect().center()));
}

void press(QWidget &window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(window.windowHandle(), key, modifiers);
}

bool isSeeing(const OriginQuestion &question)
{
    return question.findChild<QPushButton *>()->isEnabled();
}

QString shownOrigin(const OriginQuestion &question)
{
    return question.findChild<QTextEdit *>()->toPlainText();
}

QString boldPart(const OriginQuestion &question)
{
    QString bold;
    const QTextBlock block = question.findChild<QTextEdit *>()->document()->firstBlock();
    for (auto part = block.begin(); part != block.end(); ++part)
        if (part.fragment().charFormat().fontWeight() == QFont::Bold)
            bold += part.fragment().text();
    return bold;
}

QStringList labels(const OriginQuestion &question)
{
    QStringList texts;
    for (const QLabel *label : question.findChildren<QLabel *>())
        texts.append(label->text());
    return texts;
}

/// The origin that is asked about; empty without a window, and with more than one.
QString askedOrigin()
{
    const QList<OriginQuestion *> open = shownWindows<OriginQuestion>();
    return open.size() == 1 ? shownOrigin(*open.first()) : QString();
}

} // namespace

class OriginQuestionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_warnings.reset(new WarningTrap); }
    void cleanup();
    void saysWhoAsks_data();
    void saysWhoAsks();
    void longOriginShowsInFull();
    void saysWhatAPageCanDo_data();
    void saysWhatAPageCanDo();
    void clicksAnswer_data();
    void clicksAnswer();
    void keysAnswer_data();
    void keysAnswer();
    void tabReachesEveryAnswer();
    void closingIsNotNow();
    void earlyInputDoesNotCount();
    void earlyInputProlongsTheWait_data();
    void earlyInputProlongsTheWait();
    void answersWaitForTheWindow();
    void comingBackCountsAnew();
    void silenceIsNotNow();
    void sharedOriginCannotAlwaysBeAllowed_data();
    void sharedOriginCannotAlwaysBeAllowed();
    void languagesFit_data();
    void languagesFit();
    void oneWindowAfterTheOther();
    void withdrawnQuestionVanishes();
    void withdrawnQuestionNeverShows();
    void lateWithdrawalIsNothing();
    void endOfTheServiceClosesAll();
    void questionsOfAnotherThread();
    void endOfTheAskingClosesTheWindow();

private:
    std::unique_ptr<WarningTrap> m_warnings;
    const OriginQuestionTexts &m_texts = TrayTextsOf(0).question;
};

void OriginQuestionTest::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
    QVERIFY(QDir().mkpath(QStringLiteral(MVSIGNPAD_TEST_OUTPUT)));
}

void OriginQuestionTest::cleanup()
{
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
    QCOMPARE(m_warnings->taken(), QStringList());
}

void OriginQuestionTest::saysWhoAsks_data()
{
    QTest::addColumn<QString>("origin");
    QTest::addColumn<QString>("host");
    const auto row = [](const char *origin, const char *host) {
        QTest::newRow(origin) << QString::fromLatin1(origin) << QString::fromLatin1(host);
    };
    row("https://sign.example.org", "sign.example.org");
    row("https://sign.example.org:8443", "sign.example.org");
    row("https://xn--80ak6aa92e.example", "xn--80ak6aa92e.example");
    row("http://[::1]:8080", "[::1]");
    row("http://192.0.2.1", "192.0.2.1");
    row("chrome-extension://abcdefghijklmnop", "abcdefghijklmnop");
    row("null", "null");
    row("file://", "file://");
}

void OriginQuestionTest::saysWhoAsks()
{
    QFETCH(QString, origin);
    QFETCH(QString, host);
    const OriginQuestion question(origin, m_texts, AccessPolicy());
    QCOMPARE(shownOrigin(question), origin);
    QCOMPARE(boldPart(question), host);
}

void OriginQuestionTest::longOriginShowsInFull()
{
    OriginQuestion question(longOrigin(), m_texts, AccessPolicy());
    question.show();
    QVERIFY(QTest::qWaitForWindowExposed(&question, patienceMs));
    const QTextEdit &field = *question.findChild<QTextEdit *>();
    QCOMPARE(field.toPlainText(), longOrigin());
    QCOMPARE(qRound(field.document()->documentLayout()->documentSize().height()), field.viewport()->height());
    QCOMPARE(qRound(field.document()->textWidth()), field.viewport()->width());
    QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(question.frameGeometry()));
    for (const QPushButton *answer : question.findChildren<QPushButton *>())
        QVERIFY(question.rect().contains(QRect(answer->mapTo(&question, QPoint()), answer->size())));
}

void OriginQuestionTest::saysWhatAPageCanDo_data()
{
    QTest::addColumn<bool>("limited");
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("ability");
    QTest::newRow("anywhere") << false << QStringList()
                              << QStringLiteral("write files in any folder that you can write in, also files that run "
                                                "when you log in");
    QTest::newRow("nowhere") << true << QStringList()
                             << QStringLiteral("write no files but two signature pictures for WPS in /tmp");
    QTest::newRow("in folders") << true << QStringList{QStringLiteral("/tmp"), QStringLiteral("/srv/signatures")}
                                << QStringLiteral("write files in /tmp, /srv/signatures and below, and two "
                                                  "signature pictures for WPS in /tmp");
}

void OriginQuestionTest::saysWhatAPageCanDo()
{
    QFETCH(bool, limited);
    QFETCH(QStringList, folders);
    QFETCH(QString, ability);
    AccessPolicy policy;
    if (limited)
        policy.saveFolders = folders;
    const QStringList texts = labels(OriginQuestion(QLatin1String(page), m_texts, policy));
    QVERIFY(texts.contains(ability));
    QVERIFY(texts.contains(QLatin1String("read the signature, and the fingerprint picture of a pad with a sensor")));
    QCOMPARE(texts.filter(QStringLiteral("write")).size(), 1);
}

void OriginQuestionTest::clicksAnswer_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<OriginAnswer>("answer");
    QTest::newRow("this time") << QByteArray("&Allow this time") << OriginAnswer::AllowThisTime;
    QTest::newRow("always") << QByteArray("A&lways allow") << OriginAnswer::AllowAlways;
    QTest::newRow("never") << QByteArray("Ne&ver") << OriginAnswer::Never;
    QTest::newRow("not now") << QByteArray("&Not now") << OriginAnswer::NotNow;
}

void OriginQuestionTest::clicksAnswer()
{
    QFETCH(QByteArray, text);
    QFETCH(OriginAnswer, answer);
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), forever);
    QSignalSpy answers(&question, &OriginQuestion::answered);
    question.show();
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    click(question, *button(question, text.constData()));
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().value<OriginAnswer>(), answer);
    QVERIFY(!question.isVisible());
}

void OriginQuestionTest::keysAnswer_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("alt");
    QTest::addColumn<OriginAnswer>("answer");
    QTest::newRow("Alt+A") << Qt::Key_A << true << OriginAnswer::AllowThisTime;
    QTest::newRow("Alt+L") << Qt::Key_L << true << OriginAnswer::AllowAlways;
    QTest::newRow("Alt+V") << Qt::Key_V << true << OriginAnswer::Never;
    QTest::newRow("Alt+N") << Qt::Key_N << true << OriginAnswer::NotNow;
    QTest::newRow("Enter") << Qt::Key_Return << false << OriginAnswer::NotNow;
    QTest::newRow("Space") << Qt::Key_Space << false << OriginAnswer::NotNow;
    QTest::newRow("Escape") << Qt::Key_Escape << false << OriginAnswer::NotNow;
}

void OriginQuestionTest::keysAnswer()
{
    QFETCH(Qt::Key, key);
    QFETCH(bool, alt);
    QFETCH(OriginAnswer, answer);
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), forever);
    QSignalSpy answers(&question, &OriginQuestion::answered);
    question.show();
    question.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&question, patienceMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    press(question, key, alt ? Qt::AltModifier : Qt::NoModifier);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 1, patienceMs); // a mnemonic lets the button show that it is down
    QCOMPARE(answers.first().first().value<OriginAnswer>(), answer);
    QVERIFY(!question.isVisible());
}

void OriginQuestionTest::tabReachesEveryAnswer()
{
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), forever);
    question.show();
    question.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&question, patienceMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    QCOMPARE(QApplication::focusWidget(), button(question, "&Not now"));
    for (const char *text : {"&Allow this time", "A&lways allow", "Ne&ver", "&Not now"}) {
        press(question, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), button(question, text));
    }
    press(question, Qt::Key_Tab);
    QSignalSpy answers(&question, &OriginQuestion::answered);
    press(question, Qt::Key_Space);
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().value<OriginAnswer>(), OriginAnswer::AllowThisTime);
}

void OriginQuestionTest::closingIsNotNow()
{
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), forever);
    QSignalSpy answers(&question, &OriginQuestion::answered);
    question.show();
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    question.close();
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().value<OriginAnswer>(), OriginAnswer::NotNow);
}

void OriginQuestionTest::earlyInputDoesNotCount()
{
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), blind);
    QSignalSpy answers(&question, &OriginQuestion::answered);
    question.show();
    question.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&question, patienceMs));
    for (const QPushButton *answer : question.findChildren<QPushButton *>())
        click(question, *answer);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_L, Qt::Key_V, Qt::Key_N})
        press(question, key, Qt::AltModifier);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape})
        press(question, key);
    question.close();
    QVERIFY(question.isVisible());
    QCOMPARE(answers.size(), 0);
}

void OriginQuestionTest::earlyInputProlongsTheWait_data()
{
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("key") << false;
    QTest::newRow("click") << true;
}

void OriginQuestionTest::earlyInputProlongsTheWait()
{
    QFETCH(bool, byMouse);
    const OriginPatience slow = {3000, patienceMs};
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), slow);
    question.show();
    question.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&question, patienceMs));
    QTest::qWait(slow.nBlindMs / 2);
    QVERIFY(!isSeeing(question));
    QElapsedTimer sinceInput;
    sinceInput.start();
    if (byMouse)
        click(question, *button(question, "A&lways allow"));
    else
        press(question, Qt::Key_Tab);
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    QVERIFY(sinceInput.elapsed() >= slow.nBlindMs);
}

void OriginQuestionTest::answersWaitForTheWindow()
{
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy());
    QElapsedTimer sinceShown;
    sinceShown.start();
    question.show();
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    QVERIFY(sinceShown.elapsed() >= 500);
}

void OriginQuestionTest::comingBackCountsAnew()
{
    const OriginPatience slow = {3000, patienceMs};
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), slow);
    question.show();
    QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other, patienceMs));
    QVERIFY(isSeeing(question));
    question.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&question, patienceMs));
    QVERIFY(!isSeeing(question));
}

void OriginQuestionTest::silenceIsNotNow()
{
    OriginQuestion question(QLatin1String(page), m_texts, AccessPolicy(), {0, 200});
    QSignalSpy answers(&question, &OriginQuestion::answered);
    question.show();
    QVERIFY(answers.wait(patienceMs));
    QCOMPARE(answers.first().first().value<OriginAnswer>(), OriginAnswer::NotNow);
    QVERIFY(!question.isVisible());
    QCOMPARE(OriginPatience().nAnswerMs, 60000);
}

void OriginQuestionTest::sharedOriginCannotAlwaysBeAllowed_data()
{
    QTest::addColumn<QString>("origin");
    QTest::addColumn<bool>("shared");
    QTest::newRow("null") << QStringLiteral("null") << true;
    QTest::newRow("file") << QStringLiteral("file://") << true;
    QTest::newRow("site") << QString::fromLatin1(page) << false;
}

void OriginQuestionTest::sharedOriginCannotAlwaysBeAllowed()
{
    QFETCH(QString, origin);
    QFETCH(bool, shared);
    const OriginQuestion question(origin, m_texts, AccessPolicy());
    QCOMPARE(button(question, "A&lways allow") == nullptr, shared);
    QCOMPARE(question.findChildren<QPushButton *>().size(), shared ? 3 : 4);
    QCOMPARE(labels(question).filter(QStringLiteral("share this origin")).size(), shared ? 1 : 0);
}

void OriginQuestionTest::languagesFit_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("traditional Chinese") << 1 << QStringLiteral("簽名板")
                                         << QStringList{
                                                QStringLiteral("有網頁要求使用簽名板"),
                                                QStringLiteral("許多互不相干的網頁共用這個來源，因此只能允許這一次。"),
                                                QStringLiteral("只允許這次(&A)"), QStringLiteral("永不允許(&V)"),
                                                QStringLiteral("暫不允許(&N)")};
    QTest::newRow("simplified Chinese") << 2 << QStringLiteral("签名板")
                                        << QStringList{
                                               QStringLiteral("有网页请求使用签名板"),
                                               QStringLiteral("许多互不相干的网页共用这个来源，因此只能允许这一次。"),
                                               QStringLiteral("仅允许这次(&A)"), QStringLiteral("永不允许(&V)"),
                                               QStringLiteral("暂不允许(&N)")};
    QTest::newRow("English")
        << 3 << QStringLiteral("Signature Pad")
        << QStringList{
               QStringLiteral("A web page asks to use the signature pad"),
               QStringLiteral(
                   "Many pages that have nothing to do with each other share this origin, so it can be allowed for "
                   "this time only."),
               QStringLiteral("&Allow this time"), QStringLiteral("Ne&ver"), QStringLiteral("&Not now")};
}

void OriginQuestionTest::languagesFit()
{
    QFETCH(int, language);
    OriginQuestion question(QStringLiteral("null"), TrayTextsOf(language).question, AccessPolicy());
    question.show();
    QVERIFY(QTest::qWaitForWindowExposed(&question, patienceMs));
    QVERIFY(question.grab().save(QStringLiteral(MVSIGNPAD_TEST_OUTPUT "/question-%1.png").arg(language)));
    QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(question.frameGeometry()));
    for (const QLabel *label : question.findChildren<QLabel *>()) {
        QVERIFY2(!label->wordWrap() || label->heightForWidth(label->width()) <= label->height(),
                 qPrintable(label->text()));
        QVERIFY2(label->sizeHint().width() <= label->width() || label->wordWrap(), qPrintable(label->text()));
    }
    QTEST(question.windowTitle(), "title");
    QFETCH(QStringList, texts);
    QStringList shown = labels(question);
    for (const QPushButton *answer : question.findChildren<QPushButton *>())
        shown.append(answer->text());
    for (const QString &text : texts)
        QVERIFY2(shown.contains(text), qPrintable(text));
    QSet<QChar> mnemonics;
    for (const QPushButton *answer : question.findChildren<QPushButton *>()) {
        QVERIFY2(answer->minimumSizeHint().width() <= answer->width(), qPrintable(answer->text()));
        mnemonics.insert(answer->text().at(answer->text().indexOf(QLatin1Char('&')) + 1).toLower());
    }
    QCOMPARE(mnemonics, (QSet<QChar>{QLatin1Char('a'), QLatin1Char('v'), QLatin1Char('n')}));
}

void OriginQuestionTest::oneWindowAfterTheOther()
{
    OriginDesk desk;
    const OriginQuestions questions(desk, m_texts, AccessPolicy(), forever);
    QSignalSpy answers(&desk, &OriginDesk::answered);
    QStringList origins;
    for (int i = 0; i < 10; ++i)
        origins.append(QStringLiteral("https://page%1.example.org").arg(i));
    Q_EMIT desk.asked(origins.first());
    const QPointer<OriginQuestion> first = shownWindows<OriginQuestion>().first();
    for (const QString &origin : origins.mid(1))
        Q_EMIT desk.asked(origin);
    QVERIFY(first); // a further question leaves it and its minute alone
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(askedOrigin(), origins.at(i));
        OriginQuestion &question = *shownWindows<OriginQuestion>().first();
        QTRY_VERIFY_WITH_TIMEOUT(isSeeing(question), patienceMs);
        click(question, *button(question, "&Allow this time"));
        QCOMPARE(answers.size(), i + 1);
        QCOMPARE(answers.last(), (QVariantList{origins.at(i), QVariant::fromValue(OriginAnswer::AllowThisTime)}));
    }
}

void OriginQuestionTest::withdrawnQuestionVanishes()
{
    OriginDesk desk;
    const OriginQuestions questions(desk, m_texts, AccessPolicy(), blind);
    QSignalSpy answers(&desk, &OriginDesk::answered);
    Q_EMIT desk.asked(QStringLiteral("https://a.example"));
    Q_EMIT desk.asked(QStringLiteral("https://b.example"));
    QCOMPARE(askedOrigin(), QStringLiteral("https://a.example"));
    Q_EMIT desk.withdrawn(QStringLiteral("https://a.example"));
    QCOMPARE(askedOrigin(), QStringLiteral("https://b.example"));
    Q_EMIT desk.withdrawn(QStringLiteral("https://b.example"));
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
    QCOMPARE(answers.size(), 0);
}

void OriginQuestionTest::withdrawnQuestionNeverShows()
{
    OriginDesk desk;
    const OriginQuestions questions(desk, m_texts, AccessPolicy(), blind);
    Q_EMIT desk.asked(QStringLiteral("https://a.example"));
    Q_EMIT desk.asked(QStringLiteral("https://b.example"));
    Q_EMIT desk.withdrawn(QStringLiteral("https://b.example"));
    QCOMPARE(askedOrigin(), QStringLiteral("https://a.example"));
    Q_EMIT desk.withdrawn(QStringLiteral("https://a.example"));
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
}

void OriginQuestionTest::lateWithdrawalIsNothing()
{
    OriginDesk desk;
    const OriginQuestions questions(desk, m_texts, AccessPolicy(), blind);
    Q_EMIT desk.withdrawn(QStringLiteral("https://a.example"));
    Q_EMIT desk.asked(QStringLiteral("https://b.example"));
    OriginQuestion *const window = shownWindows<OriginQuestion>().first();
    Q_EMIT desk.withdrawn(QStringLiteral("https://a.example"));
    QCOMPARE(shownWindows<OriginQuestion>(), QList<OriginQuestion *>{window});
}

void OriginQuestionTest::endOfTheServiceClosesAll()
{
    OriginDesk desk;
    const OriginQuestions questions(desk, m_texts, AccessPolicy(), blind);
    Q_EMIT desk.asked(QStringLiteral("https://a.example"));
    Q_EMIT desk.asked(QStringLiteral("https://b.example"));
    Q_EMIT desk.allWithdrawn();
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
    Q_EMIT desk.asked(QStringLiteral("https://c.example"));
    QCOMPARE(askedOrigin(), QStringLiteral("https://c.example"));
}

void OriginQuestionTest::questionsOfAnotherThread()
{
    OriginDesk desk;
    const OriginQuestions questions(desk, m_texts, AccessPolicy(), blind);
    std::thread service([&desk] {
        Q_EMIT desk.asked(QStringLiteral("https://a.example"));
        Q_EMIT desk.asked(QStringLiteral("https://b.example"));
        Q_EMIT desk.withdrawn(QStringLiteral("https://a.example"));
    });
    service.join();
    QTRY_COMPARE_WITH_TIMEOUT(askedOrigin(), QStringLiteral("https://b.example"), patienceMs);
}

void OriginQuestionTest::endOfTheAskingClosesTheWindow()
{
    OriginDesk desk;
    std::unique_ptr<OriginQuestions> questions(new OriginQuestions(desk, m_texts, AccessPolicy(), blind));
    QSignalSpy answers(&desk, &OriginDesk::answered);
    Q_EMIT desk.asked(QStringLiteral("https://a.example"));
    QCOMPARE(shownWindows<OriginQuestion>().size(), 1);
    questions.reset();
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
    QCOMPARE(answers.size(), 0);
}

QTEST_MAIN(OriginQuestionTest)

#include "tst_originquestion.moc"
