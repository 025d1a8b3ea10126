// Octets out of text or out of themselves, in units: stretches in which messages stand one behind the other and behind
// which a new message begins, whatever went before.
#pragma once

#include <memory>
#include <string>

#include "input/reader.h"
#include "input/window.h"
#include "options.h"

namespace zyn::tool {

class Source {
public:
    virtual ~Source() = default;

    // Moves to the next unit, past what is left of the present one. The window is empty afterwards.
    virtual Fill next(Window& window) = 0;
    // Adds octets of the present unit. End: it has no more.
    virtual Fill fill(Window& window) = 0;

    // Whether next may find a unit behind the present one.
    virtual bool hasUnits() const { return true; }
    // The line that the present unit starts in, from 1; 0: the input has no lines.
    virtual uint64_t line() const { return 0; }
    // Why the present unit does not read as it should, for a person; empty: it does.
    virtual const std::string& complaint() const;
};

// With junk passed over, characters that spell no octets part those that do and are no matter.
std::unique_ptr<Source> rawSource(Reader& reader);
std::unique_ptr<Source> hexSource(Reader& reader, bool skipJunk);
std::unique_ptr<Source> base64Source(Reader& reader, bool skipJunk);

// Tells a spelling by the start of the input; the reader stays where it is.
Spelling tellSpelling(Reader& reader, bool skipJunk);

std::unique_ptr<Source> openSource(Reader& reader, const InputOptions& options);

} // namespace zyn::tool
