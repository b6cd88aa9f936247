#pragma once

#include <QElapsedTimer>
#include <QString>

#include <numeric>
#include <utility>
#include <vector>

/**
 * Tells on standard error how far a run is: in place, with the time left, for a person at a
 * terminal, else in a line each ten seconds.
 */
class ArchiveProgress
{
public:
    /**
     * @param what   is counted, in the plural.
     * @param bytes  of all of it; time goes by them rather than by their number.
     */
    ArchiveProgress(QString what, int count, qint64 bytes, bool isTerminal);

    /** Of things that have a size, at a terminal when both of this program's streams are at one. */
    template <class Sized>
    ArchiveProgress(QString what, const std::vector<Sized>& all)
        : ArchiveProgress(
              std::move(what), static_cast<int>(all.size()),
              std::accumulate(all.begin(), all.end(), qint64(0),
                              [](qint64 bytes, const Sized& one) { return bytes + one.size; }),
              isAtTerminal())
    {
    }

    /** One more is done. */
    void advance(qint64 bytes);

    /** Shows it when it is time to. */
    void show();

    /** Takes away what was shown in place. */
    void clear() const;

    /** What is told after so many milliseconds. */
    QString textAfter(qint64 milliseconds) const;

private:
    static bool isAtTerminal();

    const QString m_what;
    const int m_count;
    const qint64 m_bytes;
    const bool m_isTerminal;
    int m_countDone = 0;
    qint64 m_bytesDone = 0;
    qint64 m_nextShow;
    QElapsedTimer m_timer;
};
