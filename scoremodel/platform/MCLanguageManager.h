// The texts shown to the user, looked up by section and key in the language
// file of the chosen language.
//
//     CString word = MCLanguageManager::GetText(L"DataModel", L"IDS_DM_TEMPO_LARGO");
//     // the same through the instance, as callers of the platform write it:
//     CString same = MCLanguageManager::GetInstance()->GetText(L"DataModel", L"IDS_DM_TEMPO_LARGO");
//
// Language files. A language has an id of letters, digits, "_" and "-",
// kept upper case ("EN", "DE"; ids are given in any case). Its texts are in
// <folder>/<ID>.lang, where the folder is <data>/languages (see
// CommonPaths.h; SCOREMODEL_DATA_DIR redirects it) unless the host names
// another with SetLanguageFolder. The file is UTF-8 INI (see MCIniFile.h):
//
//     [DataModel]
//     IDS_DM_TEMPO_LARGO=Largo
//     IDS_MSG_EXAMPLE=First line\nsecond line
//
// Lookups. A text set by the host with SetText wins; then the text of the
// chosen language; then, for a key the chosen language lacks, the English
// text, so a partly translated file still says something; otherwise the text
// is empty. An unknown key is never an error. A missing or garbled file gives
// empty texts (a garbled file: whatever lines can still be read), never a
// crash.
//
// Host texts. Some keys belong to the host and ship empty, above all
// "ID_STRING_THE_SAME_ACTION" of "InternalSystemData", the marker in undo
// names by which the host asks for undo steps to be merged: until the host
// sets it with SetText, nothing merges. Host texts survive a change of
// language; ClearHostTexts drops them.
//
// The language starts as English. The files are read at the first lookup
// and read again when the language folder changes (the environment is looked
// at on every call), so tests may switch folders with setenv.
//
// Thread-safety: all functions may be called from any thread; one lock
// guards the tables.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Types.h>

class SCOREMODEL_API MCLanguageManager
{
public:
    // The id of the language that is chosen at start and filled in for
    // missing keys: L"EN".
    static const wchar_t *const DefaultLanguageId;

    // The one instance, made at first use and never replaced. All functions
    // below are static and work on it, so they may be called either way.
    static MCLanguageManager *GetInstance();

    // ---- Lookup ---------------------------------------------------------------

    // The text of key in section; empty when there is none.
    static CString GetText(const CString &section, const CString &key);

    // The id of the chosen language, upper case ("EN", "DE").
    static CString GetLanguageId();

    // ---- Choice of language ---------------------------------------------------

    // Chooses the language with this id and reads its file. FALSE, leaving
    // the chosen language as it was, when the id is not a valid id or its
    // file cannot be read.
    static BOOL LoadLanguage(const CString &languageId);

    // The folder of the language files, as it would be used now.
    static CString GetLanguageFolder();
    // Makes the host's folder the place of the language files; an empty
    // folder returns to <data>/languages. The files are read again at the
    // next lookup.
    static void SetLanguageFolder(const CString &folder);

    // The file of a language in the current folder; empty for an invalid id.
    static CString GetLanguageFilePath(const CString &languageId);

    // ---- Host texts -----------------------------------------------------------

    // Sets the host's text for key in section, over what the files say. An
    // empty text is a text too: the key then reads as empty. Ignored when a
    // name could not stand in a language file (see MCIniFile::Set).
    static void SetText(const CString &section, const CString &key, const CString &text);

    // Drops every text set with SetText.
    static void ClearHostTexts();

private:
    MCLanguageManager();
    ~MCLanguageManager();
    MCLanguageManager(const MCLanguageManager &) = delete;
    MCLanguageManager &operator=(const MCLanguageManager &) = delete;

    struct Tables;
    Tables *m_tables;
};
