#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePage.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePageRow.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/page/HtmlText.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

/** What stands between the tags of a style or a script, in HTML as in XML. */
static QByteArray resource(const char* name)
{
    // A library's resources are linked only when somebody asks for them, outside every namespace.
    Q_INIT_RESOURCE(archive_page);
    QFile file(QStringLiteral(":/archive_page/") + QLatin1String(name));
    file.open(QIODevice::ReadOnly);
    return "/*<![CDATA[*/\n" + file.readAll() + "/*]]>*/";
}

namespace {

constexpr int CHUNK = 65536;
constexpr double PERCENT = 100.0;

// Every page begins so, and by that it is known as one.
const QByteArray BEGIN = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\" />\n"
                         "<meta name=\"generator\" content=\"coordworkspace-convert-archive ";

QByteArray hashSource(const QByteArray& element)
{
    return "'sha256-" + QCryptographicHash::hash(element, QCryptographicHash::Sha256).toBase64() +
           "'";
}

QByteArray fact(const QByteArray& name, const QByteArray& value)
{
    return "<dt>" + name + "</dt><dd>" + value + "</dd>\n";
}

QByteArray timeOf(const QDateTime& time)
{
    const QDateTime told = time.toOffsetFromUtc(time.offsetFromUtc());
    const QByteArray iso = told.toString(Qt::ISODate).toLatin1();
    return "<time datetime=\"" + iso + "\">" + told.toString("yyyy-MM-dd HH:mm:ss ").toLatin1() +
           (told.offsetFromUtc() == 0 ? "UTC" : iso.right(6)) + "</time>";
}

} // namespace

bool ArchivePage::mayStandIn(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists()) {
        return true;
    }
    QFile page(file);
    return info.isFile() && page.open(QIODevice::ReadOnly) &&
           (page.size() == 0 || page.read(BEGIN.size()) == BEGIN);
}

bool ArchivePage::replace(const QString& file, const ArchivePageContent& content)
{
    const QFileInfo info(file);
    const std::unique_ptr<AtomicFile> part =
        AtomicFile::begin(info.absolutePath(), info.fileName());
    if (!part) {
        return false;
    }
    QFile output(part->partPath());
    return output.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && write(content, output) &&
           part->finish() && part->commit(true) && StableStorage::syncFolder(part->folder());
}

bool ArchivePage::write(const ArchivePageContent& content, QIODevice& device)
{
    ArchivePage page(content, device);
    page.countAll();
    page.addHead();
    page.addFacts();
    page.addChart();
    page.addControls();
    page.addDocuments();
    page.m_html += "</main>\n</body>\n</html>\n";
    page.flush();
    return page.m_isGood;
}

ArchivePage::ArchivePage(const ArchivePageContent& content, QIODevice& device)
    : m_content(content), m_device(device)
{
}

void ArchivePage::countAll()
{
    static_assert(std::tuple_size_v<decltype(m_counts)> == ArchivePageRow::KIND_COUNT);
    for (const DocumentRecord& record : m_content.records) {
        const ArchivePageRow row(record, m_content.gone.contains(record.path));
        ++m_counts[static_cast<std::size_t>(row.kind())];
        if (row.kind() != ArchivePageRow::GONE) {
            m_bytesBefore += record.source ? record.source->size : 0;
            m_bytesAfter += record.target ? record.target->size : 0;
        }
        m_losses += row.lossCount();
        m_systems += record.systems ? record.systems->size() : 0;
        m_verified += record.isVerified ? 1 : 0;
    }
}

void ArchivePage::addHead()
{
    const QByteArray style = resource("page.css");
    const QByteArray script = resource("page.js");
    const QByteArray name = HtmlText::escaped(QFileInfo(m_content.source).fileName());
    m_html += BEGIN + HtmlText::escaped(m_content.version) +
              "\" />\n<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none';"
              " style-src " +
              hashSource(style) + "; script-src " + hashSource(script) +
              "; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'\" />\n"
              "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\" />\n"
              "<meta name=\"color-scheme\" content=\"light dark\" />\n"
              "<meta name=\"referrer\" content=\"no-referrer\" />\n"
              "<title>Archive report: " +
              name + "</title>\n<style>" + style + "</style>\n<script>" + script +
              "</script>\n</head>\n<body>\n<header>\n<h1>Archive report: <bdi>" + name +
              "</bdi></h1>\n";
    if (m_content.isTrial) {
        m_html += "<p class=\"notice\">This was a dry run: nothing was converted. The page tells"
                  " what a run would do.</p>\n";
    }
    m_html += "</header>\n<main>\n";
}

void ArchivePage::addFacts()
{
    m_html +=
        "<div class=\"overview\">\n<section>\n<h2>The run</h2>\n<p>" +
        HtmlText::escaped(m_content.summary) + ".</p>\n<dl>\n" +
        fact("Archive", "<bdi>" + HtmlText::escaped(m_content.source) + "</bdi>") +
        fact("Converted into", "<bdi>" + HtmlText::escaped(m_content.target) + "</bdi>") +
        fact("Ended", timeOf(m_content.ended)) +
        fact("Program", "coordworkspace-convert-archive " + HtmlText::escaped(m_content.version)) +
        fact("Bytes of documents", ArchivePageRow::number(m_bytesBefore)) +
        fact("Bytes of their outputs", ArchivePageRow::number(m_bytesAfter)) +
        fact("Losses", ArchivePageRow::number(m_losses)) +
        fact("Systems whose spacings change", ArchivePageRow::number(m_systems)) +
        fact("Outputs verified", ArchivePageRow::number(m_verified)) + "</dl>\n</section>\n";
}

void ArchivePage::addChart()
{
    m_html += "<section>\n<h2>Outcomes</h2>\n<table class=\"chart\">\n<caption>What became of the "
              "files, and"
              " their share</caption>\n<thead><tr><th scope=\"col\">Outcome</th><th scope=\"col\""
              " class=\"number\">Files</th><th scope=\"col\" class=\"number\">Share</th>"
              "<td></td></tr></thead>\n<tbody>\n";
    const double all = std::max(1, m_content.records.size());
    for (int kind = 0; kind < ArchivePageRow::KIND_COUNT; ++kind) {
        const int count = m_counts[static_cast<std::size_t>(kind)];
        const QByteArray share = QByteArray::number(PERCENT * count / all, 'f', 1);
        m_html += R"(<tr><th scope="row"><span class="mark )" + ArchivePageRow::tokenOf(kind) +
                  "\">" + ArchivePageRow::nameOf(kind) + "</span></th><td class=\"number\">" +
                  ArchivePageRow::number(count) + "</td><td class=\"number\">" + share +
                  " %</td><td><svg class=\"bar " + ArchivePageRow::tokenOf(kind) +
                  "\" viewBox=\"0 0 100 8\" preserveAspectRatio=\"none\" aria-hidden=\"true\""
                  " focusable=\"false\"><rect width=\"" +
                  share + "\" height=\"8\" /></svg></td></tr>\n";
    }
    m_html += "</tbody>\n</table>\n</section>\n</div>\n";
}

// Hidden until the script shows them: without it they could do nothing.
void ArchivePage::addControls()
{
    m_html += "<h2 id=\"all\">Files</h2>\n<div id=\"controls\" role=\"search\" aria-labelledby="
              "\"all\" hidden=\"hidden\">\n<fieldset>\n<legend>Show</legend>\n";
    for (int kind = 0; kind < ArchivePageRow::KIND_COUNT; ++kind) {
        const int count = m_counts[static_cast<std::size_t>(kind)];
        m_html += R"(<label><input type="checkbox" checked="checked" value=")" +
                  ArchivePageRow::tokenOf(kind) + "\" /> " + ArchivePageRow::nameOf(kind) + " (" +
                  ArchivePageRow::number(count) + ")</label>\n";
    }
    m_html += "</fieldset>\n<p><label>With the text <input type=\"search\" id=\"find\""
              " autocomplete=\"off\" spellcheck=\"false\" /></label>\n"
              "<button type=\"button\" id=\"reset\">Show all</button></p>\n</div>\n"
              "<p id=\"status\" role=\"status\" aria-live=\"polite\" tabindex=\"-1\">" +
              ArchivePageRow::number(m_content.records.size()) + " of " +
              ArchivePageRow::number(m_content.records.size()) + " files shown</p>\n";
}

void ArchivePage::addDocuments()
{
    m_html += "<table id=\"documents\">\n<caption>What became of each file, what was lost or why"
              " nothing was written, and below it the systems whose spacings change</caption>\n"
              "<thead><tr><th scope=\"col\" data-sort=\"text\">File</th>"
              "<th scope=\"col\" data-sort=\"outcome\">Outcome</th>"
              "<th scope=\"col\" data-sort=\"losses\">Lost, or why not</th>"
              "<th scope=\"col\" data-sort=\"number\" class=\"number\">Bytes before</th>"
              "<th scope=\"col\" data-sort=\"number\" class=\"number\">Bytes after</th>"
              "<th scope=\"col\" data-sort=\"number\" class=\"number\">Seconds</th></tr></thead>\n";
    int systemsLeft = MOST_SYSTEMS;
    for (const DocumentRecord& record : m_content.records) {
        m_html += ArchivePageRow(record, m_content.gone.contains(record.path)).html(systemsLeft);
        if (m_html.size() >= CHUNK) {
            flush();
        }
    }
    m_html +=
        "</table>\n<p><button type=\"button\" id=\"more\" hidden=\"hidden\">Show more</button>"
        "</p>\n";
}

void ArchivePage::flush()
{
    m_isGood = m_isGood && m_device.write(m_html) == m_html.size();
    m_html.clear();
}
