// chord_sample: reads chord names, one a line (UTF-8), from standard input
// and prints how the library reads each, for chords.js to hold against an
// independent music theory package.
//
// Lines out, one per name in, fields divided by one blank:
//
//   <result> <root> <flavour> <bass>
//
// The raw codes of ECChordSymbol after UpdateFromString, under note-name
// pattern 1 (letters, B and H both B natural, as the package names notes).
// The pattern is a preference, so the program points the preference folder
// at a fresh temporary folder first and removes it at the end.
//
// With --node-missing the program prints why the check cannot run and exits
// with 77, which CTest reads as a skip.
#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/platform/Preferences.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--node-missing") == 0)
    {
        std::puts("node was not found when the build was configured; the chord check is skipped");
        return 77;
    }
    std::string folder = (std::filesystem::temp_directory_path() / "scoremodel-chords-XXXXXX").string();
    if (!::mkdtemp(folder.data()))
    {
        std::perror("mkdtemp");
        return 2;
    }
    ::setenv("SCOREMODEL_USER_DIR", folder.c_str(), 1);
    if (!SaveIntPreference(L"Settings\\Notation", L"NoteNamePattern", 1))
    {
        std::fputs("cannot store the note-name pattern\n", stderr);
        return 2;
    }
    auto *chord = new ECChordSymbol();
    chord->Ref();
    std::string line;
    while (std::getline(std::cin, line))
    {
        CString text = CString::FromUtf8(line.c_str());
        const int result = chord->UpdateFromString(text);
        std::printf("%d %d %d %d\n", result, chord->GetChordRoot(), chord->GetChordFlavor(), chord->GetChordBass());
    }
    chord->Unref(1);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return 0;
}
