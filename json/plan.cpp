#include "json/plan.h"

#include <algorithm>
#include <deque>
#include <string>

namespace zyn::json {
namespace {

class Plans {
public:
    Plans() : plans(ZynTypeCount()) {
        for (uint32_t number = 0; number < plans.size(); ++number) fill(plans[number], ZynTypeByNumber(number));
        for (const Plan& plan : plans) depthOf(plan.type);
    }
    const Plan& operator[](uint32_t number) const { return plans[number]; }

private:
    void fill(Plan& plan, const ZynType* type) {
        plan = {type, type->kind, {}, type->element ? &plans[type->element->number] : nullptr, {}, {}, 0};
        std::vector<Member>& members = memberLists.emplace_back();
        std::vector<uint64_t>& required = requiredLists.emplace_back((type->fieldCount + 63u) / 64u);
        for (unsigned i = 0; i < type->fieldCount; ++i) {
            const ZynField& field = type->fields[i];
            members.push_back(member(field.name, field.type, field.offset, field.optional, field.pointer));
            if (!field.optional) required[i / 64] |= uint64_t{1} << i % 64;
        }
        for (unsigned i = 0; i < type->alternativeCount; ++i) {
            const ZynAlternative& alternative = type->alternatives[i];
            members.push_back(member(alternative.name, alternative.type, type->slotOffset, 0, alternative.pointer));
        }
        std::vector<uint16_t>& byName = nameLists.emplace_back();
        for (std::size_t i = 0; i < members.size(); ++i) byName.push_back(static_cast<uint16_t>(i));
        std::ranges::sort(byName, {}, [&](uint16_t i) { return members[i].name(); });
        plan.members = members;
        plan.required = required;
        plan.byName = byName;
    }

    Member member(const char* name, const ZynType* type, uint16_t offset, uint8_t optional, uint8_t pointer) {
        std::string& key = keys.emplace_back(",\"");
        key.append(name).append("\":"); // names of the schema need no escapes
        const std::size_t length = key.size();
        key.resize((length + keyPiece - 1) / keyPiece * keyPiece);
        return {key.c_str(), static_cast<uint16_t>(length), offset, optional != 0, pointer != 0, &plans[type->number]};
    }

    // Types do not contain themselves.
    unsigned depthOf(const ZynType* type) {
        Plan& plan = plans[type->number];
        if (plan.depth > 0) return plan.depth;
        unsigned below = plan.element ? depthOf(type->element) : 0;
        for (const Member& member : plan.members) below = std::max(below, depthOf(member.plan->type));
        return plan.depth = below + 1;
    }

    // What plans refer to stays where it is.
    std::vector<Plan> plans;
    std::deque<std::string> keys;
    std::deque<std::vector<Member>> memberLists;
    std::deque<std::vector<uint16_t>> nameLists;
    std::deque<std::vector<uint64_t>> requiredLists;
};

} // namespace

const Plan& planOf(const ZynType* type) {
    static const Plans& plans = *new Plans; // never released: threads may be at work while the program ends
    return plans[type->number];
}

int memberByName(const Plan& plan, std::string_view name) {
    const auto nameOf = [&](uint16_t i) { return plan.members[i].name(); };
    const auto found = std::ranges::lower_bound(plan.byName, name, {}, nameOf);
    return found != plan.byName.end() && nameOf(*found) == name ? *found : -1;
}

} // namespace zyn::json
