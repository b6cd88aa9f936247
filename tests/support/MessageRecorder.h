#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QVector>
#include <QtGlobal>

/** One message of Qt's message channels. */
struct RecordedMessage
{
    QtMsgType type = QtDebugMsg;
    QString category;
    QString text;

    bool operator==(const RecordedMessage& other) const
    {
        return type == other.type && category == other.category && text == other.text;
    }
};

/**
 * Takes Qt's messages of every thread for as long as it lives, in place of whoever took them
 * before.
 *
 * One at a time.
 */
class MessageRecorder
{
public:
    MessageRecorder()
    {
        QMutexLocker locker(&m_lock);
        m_messages.clear();
        m_before = qInstallMessageHandler(record);
    }
    ~MessageRecorder() { qInstallMessageHandler(m_before); }
    Q_DISABLE_COPY_MOVE(MessageRecorder)

    QVector<RecordedMessage> messages() const
    {
        QMutexLocker locker(&m_lock);
        return m_messages;
    }

private:
    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        QMutexLocker locker(&m_lock);
        m_messages.append({type, QString::fromLatin1(context.category), text});
    }

    // Qt hands messages to a plain function, which knows no object.
    static inline QMutex m_lock;                       // guards the messages
    static inline QVector<RecordedMessage> m_messages; // in the order of their arrival

    QtMessageHandler m_before = nullptr;
};
