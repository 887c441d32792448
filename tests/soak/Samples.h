#pragma once

#include <QFile>

#include <vector>

/// What a process holds, at one moment.
struct Sample {
    double seconds;
    long residentKiB;
    long descriptors;
    long threads;
};

/// What a process holds over time, also as a table in a file. Growth is judged between the second quarter of the time
/// and the last: the first is for what is loaded once.
class Samples
{
public:
    Samples(qint64 processId, const QString &tableFile);

    /// False when the process is gone or the file cannot be written.
    bool take(double seconds, long requests);

    /// Prints before and after of each column; false when one has grown.
    bool printVerdict() const;

private:
    qint64 m_processId;
    QFile m_table;
    std::vector<Sample> m_samples;
};
