// Hunts messages, user names and time patterns that bring a log line out of its layout, over its
// limit, or over the end of the buffer that it is made in.
//
// The input is a byte for the level, one for the layout (a private device, the user's name, level,
// thread, the main thread), one that says how often the message stands in itself, one for the
// milliseconds, a line with the user's name, one with the time pattern, and the message.

#include "fuzz/FuzzTarget.h"

#include "ZelMain/Diagnostics/LogLine.h"
#include "ZelMain/Diagnostics/UserEntry.h"

#include <QBuffer>

#include <array>

using FuzzTarget::require;
using FuzzTarget::requireEqual;
using PkLogger::LogEntry;
using PkLogger::LoggerDataLogInterface;
using PkLogger::LogLine;
using PkLogger::LogService;
using PkLogger::TimeText;
using PkLogger::UserEntry;

namespace {

constexpr int LIMIT = 2048;
constexpr int LEVELS = 4;
constexpr int MAX_MESSAGE_SIZE = 4 * LIMIT;
constexpr quintptr THREAD_NUMBER = 140737353758592;

const QString DEFAULT_PATTERN = QStringLiteral("dd MMM yyyy hh:mm:ss.zzz");
const QString COMPLAINT = QStringLiteral(
    "ATTENTION!ATTENTION!ATTENTION!   Log String size is bigger MAX_LOG_MSG_SIZE =  2061");

int complaints = 0; // of lines over the limit, in Qt's messages

void countComplaints(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    complaints += type == QtDebugMsg && text == COMPLAINT ? 1 : 0;
}

/** One message and all that has a say in its line. */
struct Message
{
    explicit Message(FuzzTarget::Input input)
    {
        level = input.takeNumber(LEVELS);
        const int layout = input.takeByte();
        hasOwnDevice = (layout & 1) != 0;
        showsUser = (layout & 2) != 0;
        showsLevel = (layout & 4) != 0;
        showsThread = (layout & 8) != 0;
        isFromMainThread = (layout & 16) != 0;
        const int times = 1 + input.takeByte();
        milliseconds = input.takeByte() * 4 % 1000;
        userName = FuzzTarget::textOf(input.takeLine());
        pattern = FuzzTarget::textOf(input.takeLine());
        text = FuzzTarget::textOf(input.takeRest()).repeated(times).left(MAX_MESSAGE_SIZE);
    }

    int level;
    bool hasOwnDevice;
    bool showsUser;
    bool showsLevel;
    bool showsThread;
    bool isFromMainThread;
    int milliseconds;
    QString userName;
    QString pattern;
    QString text;

    QDateTime time() const { return {QDate(2026, 3, 2), QTime(3, 4, 5, milliseconds)}; }
};

// --- The rules -------------------------------------------------------------------------------

QString levelWord(const Message& message)
{
    static const std::array<QString, LEVELS> WORDS = {
        QStringLiteral(" DEBUG   "), QStringLiteral(" INFO    "), QStringLiteral(" WARNING "),
        QStringLiteral(" ERROR   ")};
    return WORDS[static_cast<std::size_t>(message.level)];
}

QString marker(const Message& message)
{
    return message.isFromMainThread ? QStringLiteral("*") : QStringLiteral(" ");
}

QString commonLine(const Message& message)
{
    return QStringLiteral("%1 %2 %3 %4%5  %6\n")
        .arg(message.time().toString(DEFAULT_PATTERN))
        .arg(message.userName)
        .arg(levelWord(message))
        .arg(quint64{THREAD_NUMBER})
        .arg(marker(message))
        .arg(message.text);
}

QString ownLine(const Message& message)
{
    const QString& pattern = message.pattern.isEmpty() ? DEFAULT_PATTERN : message.pattern;
    QString line = message.time().toString(pattern) + QLatin1Char(' ');
    if (message.showsUser) {
        line += message.userName + QLatin1Char(' ');
    }
    if (message.showsLevel) {
        line += levelWord(message);
    }
    if (message.showsLevel || message.showsThread) {
        line += QString::number(quint64{THREAD_NUMBER}) + marker(message);
    }
    return line + message.text + QLatin1Char('\n');
}

QByteArray expectedLine(const Message& message)
{
    QString line = message.hasOwnDevice ? ownLine(message) : commonLine(message);
    if (line.size() > LIMIT) {
        line = line.left(LIMIT - 1) + QStringLiteral(" < TRANCATED >");
    }
    // Each unit outside of Latin-1 is a question mark, both halves of a character beyond 16 bits.
    QByteArray bytes;
    for (const QChar unit : line) {
        bytes += unit.unicode() > 0xff ? '?' : static_cast<char>(unit.unicode());
    }
    return bytes;
}

// --- The line --------------------------------------------------------------------------------

UserEntry userOf(const Message& message)
{
    UserEntry user;
    user.name = message.userName;
    if (message.hasOwnDevice) {
        user.device = QSharedPointer<QBuffer>::create();
    }
    user.options.setFlag(LogService::OutUserName, message.showsUser);
    user.timeText = TimeText(message.pattern);
    user.needsExactTime = user.device && user.timeText.needsExactMoments();
    return user;
}

// As the service hands it over: at a hundredth of a second and some milliseconds, but where the
// user's pattern needs the moment itself.
LogEntry entryOf(const Message& message, const UserEntry& user)
{
    LogEntry entry;
    entry.message = message.text;
    entry.level = static_cast<LoggerDataLogInterface::LOGLEVEL>(message.level);
    entry.thread = reinterpret_cast<QThread*>(THREAD_NUMBER); // a number only
    entry.isFromMainThread = message.isFromMainThread;
    entry.time.extraMs = user.needsExactTime ? 0 : message.milliseconds % 10;
    entry.time.base = message.time().addMSecs(-entry.time.extraMs);
    return entry;
}

void check(LogLine& line, const Message& message, UserEntry& user)
{
    LogService::LogOptions options;
    options.setFlag(LogService::LogLevel, message.showsLevel);
    options.setFlag(LogService::LogThread, message.showsThread);
    const QByteArray expected = expectedLine(message);

    complaints = 0;
    const LogLine::Text text = line.getFormattedString(entryOf(message, user), user, options);
    const QByteArray actual(text.data, static_cast<int>(text.size));
    require(actual.size() <= LIMIT + 13, "a line is never longer than its limit and the mark");
    require(actual.endsWith('\n') || actual.size() == LIMIT + 13,
            "a line ends with a line feed unless it was cut");
    requireEqual(actual, expected, "a line has its layout");
    require(complaints == (actual.size() > LIMIT ? 1 : 0), "a line that was cut is reported once");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    const QtMessageHandler before = qInstallMessageHandler(countComplaints);
    const Message message(FuzzTarget::Input(data, size));
    UserEntry user = userOf(message);
    LogLine line;
    check(line, message, user);

    // What one line leaves behind does not show in the next.
    Message shorter = message;
    shorter.text = message.text.left(3);
    shorter.milliseconds = (message.milliseconds + 1) % 1000;
    check(line, shorter, user);
    check(line, message, user);
    qInstallMessageHandler(before);
    return 0;
}
