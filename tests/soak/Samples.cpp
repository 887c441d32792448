#include "tests/soak/Samples.h"

#include <QDir>

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace {

/// What the heap of a busy process wavers by.
const long toleratedKiB = 4 * 1024;

struct Column {
    const char *name;
    long Sample::*value;
    long tolerated;
};

const Column columns[] = {
    {"resident memory (KiB)", &Sample::residentKiB, toleratedKiB},
    {"file descriptors", &Sample::descriptors, 0},
    {"threads", &Sample::threads, 0},
};

long entriesOf(const QString &directory)
{
    return static_cast<long>(QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

long median(std::vector<Sample>::const_iterator from, std::vector<Sample>::const_iterator to, long Sample::*value)
{
    std::vector<long> values;
    std::transform(from, to, std::back_inserter(values), [value](const Sample &sample) { return sample.*value; });
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size()) / 2, values.end());
    return values.at(values.size() / 2);
}

} // namespace

Samples::Samples(qint64 processId, const QString &tableFile) : m_processId(processId), m_table(tableFile)
{
    if (m_table.open(QIODevice::WriteOnly | QIODevice::Truncate))
        m_table.write("seconds memory_MiB descriptors threads requests\n");
}

bool Samples::take(double seconds, long requests)
{
    const QString process = QStringLiteral("/proc/%1/").arg(m_processId);
    QFile statm(process + QLatin1String("statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return false;
    const long residentPages = statm.readAll().split(' ').value(1).toLong();
    const Sample sample{seconds, residentPages * (sysconf(_SC_PAGESIZE) / 1024),
                        entriesOf(process + QLatin1String("fd")), entriesOf(process + QLatin1String("task"))};
    m_samples.push_back(sample);
    const QByteArray row = QStringLiteral("%1 %2 %3 %4 %5\n")
                               .arg(sample.seconds, 0, 'f', 1)
                               .arg(static_cast<double>(sample.residentKiB) / 1024, 0, 'f', 2)
                               .arg(sample.descriptors)
                               .arg(sample.threads)
                               .arg(requests)
                               .toLatin1();
    return residentPages > 0 && m_table.write(row) == row.size() && m_table.flush();
}

bool Samples::printVerdict() const
{
    const long quarter = static_cast<long>(m_samples.size()) / 4;
    if (quarter < 5) {
        std::puts("too few samples to judge growth");
        return false;
    }
    bool isSteady = true;
    for (const Column &column : columns) {
        const long before = median(m_samples.begin() + quarter, m_samples.begin() + 2 * quarter, column.value);
        const long after = median(m_samples.end() - quarter, m_samples.end(), column.value);
        const bool hasGrown = after > before + column.tolerated;
        std::printf("%s: %ld before, %ld after%s\n", column.name, before, after, hasGrown ? ": GROWTH" : "");
        isSteady = isSteady && !hasGrown;
    }
    return isSteady;
}
