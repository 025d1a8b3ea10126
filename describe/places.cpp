// What failure codes mean without a message at hand.
#include "describe/words.h"
#include "records/tables.h"
#include "sbuf/state.h"
#include "zyn/failure.h"

namespace zyn {
namespace {

constexpr ZynPlaceKind kindOf(Site site) {
    switch (site) {
    case Site::OuterTag: return ZYN_PLACE_MESSAGE_TAG;
    case Site::InnerTag: return ZYN_PLACE_INNER_TAG;
    case Site::Length: return ZYN_PLACE_LENGTH;
    case Site::FieldTag: return ZYN_PLACE_FIELD_TAG;
    case Site::Stray: return ZYN_PLACE_STRAY;
    default: return ZYN_PLACE_ONLY;
    }
}

bool isReported(const Type& type, Site site) {
    return site != Site::End && !(site == Site::Stray && !type.fields.back().optional);
}

void putMeaning(Words& words, const ZynPlace& place) {
    const char* record = place.type->name;
    switch (place.kind) {
    case ZYN_PLACE_MESSAGE_TAG:
        words << "a " << record << " does not start with ";
        putTag(words, sequenceTag);
        break;
    case ZYN_PLACE_INNER_TAG:
        words << "the wrapper of " << place.field->name << " in " << record << " does not hold ";
        putTag(words, integerTag);
        break;
    case ZYN_PLACE_LENGTH: words << "the fields of " << record << " do not add up to its length"; break;
    case ZYN_PLACE_FIELD_TAG:
        words << record << " lacks its required field " << place.field->name << ", ";
        putExpected(words, *place.field->type, place.field->tag);
        break;
    case ZYN_PLACE_STRAY: words << "an element of " << record << " is none of the fields that may stand there"; break;
    case ZYN_PLACE_ONLY:
        if (place.type->kind == ZYN_KIND_SEQUENCE) words << record << " has content, though it has no fields";
        else if (place.type->kind == ZYN_KIND_CHOICE) words << "a tag is that of no alternative of " << record;
        else putTag(words << "an element of " << record << " is not ", sequenceTag);
        break;
    }
}

} // namespace
} // namespace zyn

int ZynFailurePlace(const char* module, int32_t code, ZynPlace* out) {
    using namespace zyn;
    if (!module || code > firstSiteCode) return 0;
    int found = 0;
    for (const Type& type : types) {
        if (!type.module || std::string_view(type.module) != module || code > type.firstCode) continue;
        eachPlace(type, [&](Site site, std::size_t field, int16_t itsCode) {
            if (itsCode != code || !isReported(type, site)) return;
            const ZynType* description = ZynTypeByNumber(static_cast<uint32_t>(type.id));
            const bool ofField = site == Site::InnerTag || site == Site::FieldTag;
            *out = {description, ofField ? &description->fields[field] : nullptr, kindOf(site)};
            found = 1;
        });
    }
    return found;
}

const char* ZynFailureText(const char* module, int32_t code) {
    switch (code) {
#define ZYN_CODE_MEANING(name, number, meaning)                                                                        \
    case name: return meaning;
        ZYN_CODES(ZYN_CODE_MEANING)
#undef ZYN_CODE_MEANING
    }
    ZynPlace place;
    if (!ZynFailurePlace(module, code, &place)) return nullptr;
    zyn::Words words(zyn::currentFailure().meaning);
    zyn::putMeaning(words, place);
    return zyn::currentFailure().meaning;
}
