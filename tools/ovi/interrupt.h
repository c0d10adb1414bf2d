// Ctrl-C, and the system's wish that the program should end.
#pragma once

namespace tool {

/// True after the user pressed Ctrl-C.
bool interrupted();

/// Makes Ctrl-C set the flag that interrupted() tells, instead of ending the process; a second one ends it as usual.
/// A write to a pipe that nobody reads fails from now on, and does not end the process either.
void catchInterrupt();

/// Throws ToolError when the user pressed Ctrl-C.
void throwIfInterrupted();

}  // namespace tool
