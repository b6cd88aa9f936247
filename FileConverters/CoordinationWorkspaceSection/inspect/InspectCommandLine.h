#pragma once

#include <QString>
#include <QStringList>

/** What coordworkspace-inspect is asked to do. */
struct InspectCommandLine
{
    enum Task { INSPECT, VERIFY, SHOW_HELP, SHOW_VERSION, SHOW_SCHEMA };
    enum Colour { AUTO, ALWAYS, NEVER };

    Task task = INSPECT;
    bool isJson = false;
    bool isQuiet = false;
    bool joinsLines = false; ///< reads files as the converter reads standard input
    Colour colour = AUTO;
    QStringList documents; ///< never empty; "-" stands for standard input; two to verify

    /**
     * Reads the arguments, the program's own name not among them.
     *
     * @return what is wrong with them; empty when nothing is. Then isJson tells all the same how to
     *         say so.
     */
    QString parse(const QStringList& arguments);

    /** What --help shows. */
    static QString helpText();
};
