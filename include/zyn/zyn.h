/* zyn: the wire codec of the exchange's trading protocol. This header is all that a program needs to include. */
#ifndef ZYN_ZYN_H
#define ZYN_ZYN_H

#include "zyn/asn.h"
#include "zyn/codes.h"
#include "zyn/context.h"
#include "zyn/describe.h"
#include "zyn/failure.h"
#include "zyn/messages.h"
#include "zyn/records.h"
#include "zyn/values.h"

#endif
