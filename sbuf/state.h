// What the library keeps between calls, reached by its own code through these accessors alone.
#pragma once

#include "zyn/asn.h"

namespace zyn {

inline NibbleMem* currentArena() { return nmG; }
inline StrStk& currentStrStk() { return strStkG; }
inline unsigned short currentIndent() { return stdIndentG; }

// Gives back the arena and the tables of constructed strings, as if the process had just started.
void releaseRuntime();

} // namespace zyn
