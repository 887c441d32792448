// Who is let in by the origin, what the user's answers change, and the bounds of it.
#include "service/OriginDesk.h"
#include "service/OriginGate.h"

#include <QTest>
#include <QWebSocket>

#include <array>

Q_DECLARE_METATYPE(AccessPolicy)
Q_DECLARE_METATYPE(OriginGate::Verdict)

namespace {

using Verdict = OriginGate::Verdict;

const int longGraceMs = 3600000;

const auto listed = QStringLiteral("https://listed.example");
const auto always = QStringLiteral("https://always.example");
const auto blocked = QStringLiteral("https://blocked.example");
const auto page = QStringLiteral("https://page.example");

AccessPolicy policyWith(std::optional<UnknownOrigins> unknown, bool bList = false)
{
    AccessPolicy policy;
    policy.unknownOrigins = unknown;
    if (bList)
        policy.allowedOrigins = QStringList{listed, blocked};
    policy.originAnswers.SetAllowed(always);
    policy.originAnswers.SetBlocked(blocked);
    return policy;
}

QString site(int number)
{
    return QStringLiteral("https://site%1.example").arg(number);
}

} // namespace

class OriginGateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void settingsAndAnswers_data();
    void settingsAndAnswers();
    void anyTextIsServedWhereNothingIsConfigured();
    void onlyOriginsAreAskedAbout();
    void nobodyIsAskedWithoutListeners();
    void programsAreNeverAskedAbout();
    void thisTimeLastsWhileAPageIsThere();
    void thisTimeLastsForAReload();
    void thisTimeIsForOneOrigin();
    void alwaysAndNever();
    void oneQuestionForAllOfAnOrigin();
    void answeredInTheOrderOfComing();
    void refusedTwiceIsSilenced();
    void allowedInBetweenIsNotInARow();
    void refusalsOutliveTheGate();
    void lateAnswerCountsForNobody();
    void waitingIsBounded();
    void goingAwayAgainAndAgainIsSilenced();
    void refusalsAreBounded();

private:
    OriginGate askingGate(int graceMs = longGraceMs)
    {
        return OriginGate(policyWith(UnknownOrigins::Ask), m_desk.get(), graceMs);
    }

    std::unique_ptr<OriginDesk> m_desk;
    std::array<QWebSocket, 3> m_clients;
};

void OriginGateTest::init()
{
    m_desk = std::make_unique<OriginDesk>();
    connect(m_desk.get(), &OriginDesk::asked, this, [] {});
}

void OriginGateTest::settingsAndAnswers_data()
{
    QTest::addColumn<AccessPolicy>("policy");
    QTest::addColumn<Verdict>("ofListed");
    QTest::addColumn<Verdict>("ofAlways");
    QTest::addColumn<Verdict>("ofPage");
    const Verdict in = Verdict::Admitted;
    const Verdict ask = Verdict::ToBeAsked;
    const Verdict out = Verdict::Refused;
    QTest::newRow("nothing configured") << policyWith({}) << in << in << in;
    QTest::newRow("allow") << policyWith(UnknownOrigins::Allow) << in << in << in;
    QTest::newRow("block") << policyWith(UnknownOrigins::Block) << out << out << out;
    QTest::newRow("ask") << policyWith(UnknownOrigins::Ask) << ask << in << ask;
    QTest::newRow("a list") << policyWith({}, true) << in << out << out;
    QTest::newRow("a list, allow") << policyWith(UnknownOrigins::Allow, true) << in << in << in;
    QTest::newRow("a list, block") << policyWith(UnknownOrigins::Block, true) << in << out << out;
    QTest::newRow("a list, ask") << policyWith(UnknownOrigins::Ask, true) << in << in << ask;
}

void OriginGateTest::settingsAndAnswers()
{
    QFETCH(AccessPolicy, policy);
    const OriginGate gate(policy, m_desk.get());
    QTEST(gate.Judge(listed), "ofListed");
    QTEST(gate.Judge(always), "ofAlways");
    QTEST(gate.Judge(page), "ofPage");
    QCOMPARE(gate.Judge(blocked), Verdict::Refused); // also when it is listed
}

void OriginGateTest::anyTextIsServedWhereNothingIsConfigured()
{
    const auto odd = QStringLiteral("HTTPS://Odd.example/ x");
    QCOMPARE(OriginGate(AccessPolicy()).Judge(odd), Verdict::Admitted);
    AccessPolicy policy;
    policy.bRequireOrigin = true;
    QCOMPARE(OriginGate(policy).Judge(odd), Verdict::Admitted);
    QCOMPARE(OriginGate(policyWith({})).Judge(odd), Verdict::Refused); // it could be a blocked one in disguise
    policy.unknownOrigins = UnknownOrigins::Allow;
    QCOMPARE(OriginGate(policy).Judge(odd), Verdict::Refused);
}

void OriginGateTest::onlyOriginsAreAskedAbout()
{
    const OriginGate gate = askingGate();
    for (const char *text : {"https://page.example/", "https://page.example evil", "https://p\303\244ge.example", "x"})
        QCOMPARE(gate.Judge(QString::fromUtf8(text)), Verdict::Refused);
    for (const char *text : {"null", "file://", "chrome-extension://abc"})
        QCOMPARE(gate.Judge(QString::fromUtf8(text)), Verdict::ToBeAsked);
}

void OriginGateTest::nobodyIsAskedWithoutListeners()
{
    QCOMPARE(OriginGate(policyWith(UnknownOrigins::Ask)).Judge(page), Verdict::Refused);
    OriginDesk deserted;
    QCOMPARE(OriginGate(policyWith(UnknownOrigins::Ask), &deserted).Judge(page), Verdict::Refused);
    QCOMPARE(OriginGate(policyWith(UnknownOrigins::Ask), &deserted).Judge(always), Verdict::Admitted);
}

void OriginGateTest::programsAreNeverAskedAbout()
{
    QCOMPARE(askingGate().Judge(QString()), Verdict::Admitted);
    AccessPolicy policy = policyWith(UnknownOrigins::Ask);
    policy.bRequireOrigin = true;
    QCOMPARE(OriginGate(policy, m_desk.get()).Judge(QString()), Verdict::Refused);
}

void OriginGateTest::thisTimeLastsWhileAPageIsThere()
{
    OriginGate gate = askingGate(0); // no grace
    QVERIFY(gate.LetWait(&m_clients[0], page));
    QCOMPARE(gate.TakeAnswer(page, OriginAnswer::AllowThisTime), QList<QWebSocket *>{&m_clients[0]});
    gate.Admit(&m_clients[0], page);
    QCOMPARE(gate.Judge(page), Verdict::Admitted);
    gate.Admit(&m_clients[1], page);
    QVERIFY(!gate.Remove(&m_clients[0], page));
    QCOMPARE(gate.Judge(page), Verdict::Admitted);
    QVERIFY(!gate.Remove(&m_clients[1], page));
    QCOMPARE(gate.Judge(page), Verdict::ToBeAsked);
}

void OriginGateTest::thisTimeLastsForAReload()
{
    OriginGate gate = askingGate();
    gate.LetWait(&m_clients[0], page);
    gate.TakeAnswer(page, OriginAnswer::AllowThisTime);
    gate.Admit(&m_clients[0], page);
    gate.Remove(&m_clients[0], page);
    QCOMPARE(gate.Judge(page), Verdict::Admitted);
}

void OriginGateTest::thisTimeIsForOneOrigin()
{
    OriginGate gate = askingGate();
    gate.LetWait(&m_clients[0], page);
    gate.TakeAnswer(page, OriginAnswer::AllowThisTime);
    gate.Admit(&m_clients[0], page);
    for (const char *other : {"http://page.example", "https://page.example:444", "https://sub.page.example"})
        QCOMPARE(gate.Judge(QString::fromLatin1(other)), Verdict::ToBeAsked);
}

void OriginGateTest::alwaysAndNever()
{
    OriginGate gate = askingGate(0);
    gate.LetWait(&m_clients[0], page);
    gate.TakeAnswer(page, OriginAnswer::AllowAlways);
    QCOMPARE(gate.Judge(page), Verdict::Admitted);
    gate.Admit(&m_clients[0], page);
    QVERIFY(gate.AdmittedButBlocked().isEmpty());
    QVERIFY(gate.TakeAnswer(page, OriginAnswer::Never).isEmpty());
    QCOMPARE(gate.Judge(page), Verdict::Refused);
    QCOMPARE(gate.AdmittedButBlocked(), QList<QWebSocket *>{&m_clients[0]});
    gate.SetAnswers(OriginAnswers());
    QCOMPARE(gate.Judge(page), Verdict::ToBeAsked);
}

void OriginGateTest::oneQuestionForAllOfAnOrigin()
{
    OriginGate gate = askingGate();
    QVERIFY(gate.LetWait(&m_clients[0], page));
    QVERIFY(!gate.LetWait(&m_clients[1], page));
    QVERIFY(gate.LetWait(&m_clients[2], site(1)));
    QVERIFY(!gate.Remove(&m_clients[0], page));
    QVERIFY(gate.Remove(&m_clients[1], page)); // to be withdrawn
    QCOMPARE(gate.WaitingOrigins(), QStringList(site(1)));
}

void OriginGateTest::answeredInTheOrderOfComing()
{
    OriginGate gate = askingGate();
    for (QWebSocket &client : m_clients)
        gate.LetWait(&client, page);
    QCOMPARE(gate.TakeAnswer(page, OriginAnswer::NotNow),
             (QList<QWebSocket *>{&m_clients[0], &m_clients[1], &m_clients[2]}));
    QVERIFY(!gate.HasWaiting());
}

void OriginGateTest::refusedTwiceIsSilenced()
{
    OriginGate gate = askingGate();
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(gate.Judge(page), Verdict::ToBeAsked);
        gate.LetWait(&m_clients[0], page);
        gate.TakeAnswer(page, OriginAnswer::NotNow);
    }
    QCOMPARE(gate.Judge(page), Verdict::Refused);
    QCOMPARE(gate.Judge(site(1)), Verdict::ToBeAsked);
    OriginAnswers answers;
    answers.SetAllowed(page);
    gate.SetAnswers(answers);
    QCOMPARE(gate.Judge(page), Verdict::Admitted);
}

void OriginGateTest::allowedInBetweenIsNotInARow()
{
    OriginGate gate = askingGate(0);
    for (OriginAnswer answer : {OriginAnswer::NotNow, OriginAnswer::AllowThisTime, OriginAnswer::NotNow}) {
        gate.LetWait(&m_clients[0], page);
        gate.TakeAnswer(page, answer);
    }
    QCOMPARE(gate.Judge(page), Verdict::ToBeAsked);
}

void OriginGateTest::refusalsOutliveTheGate()
{
    for (int i = 0; i < 2; ++i) {
        OriginGate gate = askingGate();
        gate.LetWait(&m_clients[0], page);
        gate.TakeAnswer(page, OriginAnswer::NotNow);
    }
    QCOMPARE(askingGate().Judge(page), Verdict::Refused);
}

void OriginGateTest::lateAnswerCountsForNobody()
{
    OriginGate gate = askingGate();
    for (OriginAnswer answer : {OriginAnswer::AllowThisTime, OriginAnswer::NotNow, OriginAnswer::NotNow}) {
        QVERIFY(gate.TakeAnswer(page, answer).isEmpty());
        QCOMPARE(gate.Judge(page), Verdict::ToBeAsked);
    }
}

void OriginGateTest::waitingIsBounded()
{
    OriginGate gate = askingGate();
    std::array<QWebSocket, 16 + 7> clients;
    for (int i = 0; i < 16; ++i) {
        QCOMPARE(gate.Judge(site(i)), Verdict::ToBeAsked);
        gate.LetWait(&clients[static_cast<size_t>(i)], site(i));
    }
    QCOMPARE(gate.Judge(site(16)), Verdict::Refused);
    for (size_t i = 16; i < clients.size(); ++i) {
        QCOMPARE(gate.Judge(site(0)), Verdict::ToBeAsked);
        gate.LetWait(&clients[i], site(0));
    }
    QCOMPARE(gate.Judge(site(0)), Verdict::Refused);
    QCOMPARE(gate.Waiting().size(), 23);
    gate.TakeAnswer(site(0), OriginAnswer::NotNow);
    QCOMPARE(gate.Judge(site(16)), Verdict::ToBeAsked);
}

void OriginGateTest::goingAwayAgainAndAgainIsSilenced()
{
    OriginGate gate = askingGate();
    for (int i = 0; i < 20; ++i) {
        QCOMPARE(gate.Judge(page), Verdict::ToBeAsked);
        gate.LetWait(&m_clients[0], page);
        QVERIFY(gate.Remove(&m_clients[0], page));
    }
    QCOMPARE(gate.Judge(page), Verdict::Refused);
}

void OriginGateTest::refusalsAreBounded()
{
    OriginGate gate = askingGate();
    for (int i = 0; i < 1000; ++i) {
        gate.LetWait(&m_clients[0], site(i));
        gate.TakeAnswer(site(i), OriginAnswer::NotNow);
    }
    QCOMPARE(gate.Judge(site(0)), Verdict::ToBeAsked);
    QCOMPARE(gate.Judge(page), Verdict::Refused);
}

QTEST_GUILESS_MAIN(OriginGateTest)

#include "tst_origingate.moc"
