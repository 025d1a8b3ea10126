// Counts what is allocated by new and realloc, and refuses it.
#pragma once

extern unsigned asked;   // how often
extern unsigned granted; // how many more may be had
