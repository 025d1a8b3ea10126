/* Contexts: the library in several threads at a time. */
#ifndef ZYN_CONTEXT_H
#define ZYN_CONTEXT_H

#include "zyn/asn.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZynContext holds all that the library keeps between calls: the arena with what was decoded last, the StrStk, the error
 * handler, the indentation. A thread that has bound none works on the process-wide state, which is for one thread at a
 * time. Threads that have bound contexts of their own share nothing that is written and need no locks.
 *
 * Three things are not of a context. A record belongs to one thread at a time, for Encode and Print move the cursors of its
 * lists. What was decoded stays in the arena of the context that was bound then. PLUS_INFINITY, MINUS_INFINITY and
 * numToHexCharTblG are read by all threads; change them before there is a second one. */
typedef struct ZynContext ZynContext;

/* ZynContextNew makes a context with an indentation of 4 and the default error handler, or returns null when memory is
 * refused. It belongs to the caller and is bound to no thread. Its arena is made by the first call that needs one. */
ZYN_API ZynContext* ZynContextNew(void);

/* ZynContextFree releases context and all that was decoded into it; null: does nothing. No thread may have it bound, the
 * calling one included: one that has must bind another or end without calling the library again. This is not checked. A
 * context is not released by the end of a thread. */
ZYN_API void ZynContextFree(ZynContext* context);

/* ZynContextUse binds context to the calling thread until the next ZynContextUse in it and returns the one that was bound
 * before. Null stands for the process-wide state, in both places. Every operation of the library works on the context that
 * its thread has bound; nmG, strStkG and stdIndentG remain the process-wide state's. One context is for one thread at a
 * time, but may move from thread to thread. */
ZYN_API ZynContext* ZynContextUse(ZynContext* context);

/* ZynContextSetIndent sets the number of spaces that a level of printed notation goes deeper; of the process-wide state, as
 * stdIndentG does, if context is null. */
ZYN_API void ZynContextSetIndent(ZynContext* context, unsigned short spaces);

#ifdef __cplusplus
}
#endif

#endif
