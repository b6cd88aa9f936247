// Tells where a dialog for show files begins, and remembers the folder that the user chose in it.
//
// usage: remember_folder [CHOSEN_FOLDER]

#include "ZelMain/DirectoryMemory.h"

#include <QFile>
#include <QTextStream>

int main(int argc, char** argv)
{
    const DirectoryMemory folders;
    if (argc == 2) {
        folders.SaveDir(DirectoryMemory::ShowFiles, QFile::decodeName(argv[1]));
    }
    QTextStream(stdout) << "begins in " << folders.RestoreDir(DirectoryMemory::ShowFiles) << '\n'
                        << "by default " << folders.DefaultDir(DirectoryMemory::ShowFiles) << '\n';
    return 0;
}
