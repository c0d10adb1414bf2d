// What the tool needs of the operating system: the terminal, the arguments' encoding, its own folder, the environment.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// True when the stream is a terminal that a person looks at.
bool standardOutputIsTerminal();
bool standardErrorIsTerminal();

/// Takes standard output away from the libraries of this process, whose messages would mix with the data: what they
/// print goes to standard error, or nowhere. Called once, first.
/// @return where the tool's data go: the real standard output
std::FILE* takeStandardOutput(bool showLibraryOutput);

/// Columns of the terminal behind standard error; 80 when there is none.
int terminalWidth();

/// Makes the console take UTF-8 and escape sequences where it has to be asked for that.
void prepareConsole();

/// The program's arguments in UTF-8, without its name.
std::vector<std::string> utf8Arguments(int argc, char** argv);

/// The folder that holds this program's file.
std::filesystem::path programFolder();

/// An environment variable's value in UTF-8; empty when it is not set.
std::string environmentVariable(const char* name);
void setEnvironmentVariable(const char* name, const std::string& value);

/// All of them, as NAME=VALUE.
std::vector<std::string> environmentVariables();

/// Converts between the tool's UTF-8 and the narrow text of the library's interface.
std::string toLibraryText(std::string_view utf8);
std::string fromLibraryText(std::string_view narrow);

/// Bytes of main memory; 0 when the system does not tell.
std::uint64_t mainMemory();

/// The word as it must be typed into a shell, with quotation marks where it needs them.
std::string shellWord(const std::string& word);

/// What separates the folders of a search path: ";", outside Windows ":" too.
const char* searchPathSeparators();

}  // namespace tool
