#include "service/CommandTable.h"

#include <QTest>

class CommandTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noNameHidesBehindAnother();
};

/// A request is the first command whose name it begins with.
void CommandTableTest::noNameHidesBehindAnother()
{
    for (int i = 0; i < nCommandCount; ++i) {
        for (int j = 0; j < i; ++j)
            QVERIFY2(!QByteArray(commandTable[i].szName).startsWith(commandTable[j].szName), commandTable[i].szName);
    }
}

QTEST_GUILESS_MAIN(CommandTableTest)
#include "tst_commandtable.moc"
