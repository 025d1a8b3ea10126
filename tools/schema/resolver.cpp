#include "schema/resolver.h"

#include <map>
#include <set>
#include <utility>

#include "schema/refusal.h"

namespace zyn::schema {
namespace {

const std::map<std::string, Kind> builtIn = {
    {"INTEGER", Kind::Integer},          {"BOOLEAN", Kind::Boolean},      {"REAL", Kind::Real},
    {"OCTET STRING", Kind::OctetString}, {"BIT STRING", Kind::BitString},
};

class Resolver {
public:
    explicit Resolver(Schema& schema) : schema_(schema) {}

    void run() {
        indexModules();
        indexTypes();
        for (Module& module : schema_.modules) resolveModule(module);
        for (const Module& module : schema_.modules) refuseModuleRing(module);
        for (const Module& module : schema_.modules) {
            for (const Type& type : module.types) refuseRecursion(module, type);
        }
    }

private:
    void indexModules() {
        for (const Module& module : schema_.modules) {
            const auto [known, isNew] = modules_.emplace(module.name, &module);
            if (!isNew) {
                throw Refusal(module.file, module.line,
                              "the module " + inQuotes(module.name) + " is also in " + known->second->file);
            }
        }
    }

    // Names of types are unique over all modules, because each names exported operations.
    void indexTypes() {
        std::map<std::string, const Module*> definedIn;
        for (const Module& module : schema_.modules) {
            for (const Type& type : module.types) {
                const auto [known, isNew] = definedIn.emplace(type.name, &module);
                if (!isNew) {
                    throw Refusal(module.file, type.line,
                                  "the type " + inQuotes(type.name) + " is defined already in module " +
                                      inQuotes(known->second->name));
                }
                types_[{module.name, type.name}] = &type;
            }
        }
    }

    void resolveModule(Module& module) {
        std::map<std::string, const Type*> visible;
        for (const Import& import : module.imports) {
            if (!modules_.contains(import.module)) {
                throw Refusal(module.file, import.line, "the module " + inQuotes(import.module) + " is not known");
            }
            const auto found = types_.find({import.module, import.name});
            if (found == types_.end()) {
                throw Refusal(module.file, import.line,
                              "the module " + inQuotes(import.module) + " defines no " + inQuotes(import.name));
            }
            if (!visible.emplace(import.name, found->second).second) {
                throw Refusal(module.file, import.line, inQuotes(import.name) + " is imported twice");
            }
        }
        for (const Type& type : module.types) visible.emplace(type.name, &type);

        std::set<std::string> used;
        const auto bind = [&](TypeUse& use) {
            used.insert(use.name);
            if (const auto primitive = builtIn.find(use.name); primitive != builtIn.end()) {
                use.kind = primitive->second;
                return;
            }
            const auto found = visible.find(use.name);
            if (found == visible.end()) {
                throw Refusal(module.file, use.line,
                              "the type " + inQuotes(use.name) + " is neither defined in this module nor imported");
            }
            use.kind = found->second->kind;
            use.type = found->second;
        };
        for (Type& type : module.types) {
            if (type.kind == Kind::SetOf) bind(type.element);
            for (Member& member : type.members) bind(member.use);
        }
        for (const Import& import : module.imports) {
            if (!used.contains(import.name)) {
                throw Refusal(module.file, import.line, inQuotes(import.name) + " is imported but not used");
            }
        }
    }

    // Each module becomes a header that includes those of its imports, so imports cannot run in a ring.
    void refuseModuleRing(const Module& module) {
        if (doneModules_.contains(&module)) return;
        openModules_.insert(&module);
        for (const Import& import : module.imports) {
            const Module& next = *modules_.at(import.module);
            if (openModules_.contains(&next)) {
                throw Refusal(module.file, import.line,
                              "the modules " + inQuotes(module.name) + " and " + inQuotes(next.name) +
                                  " import from each other, directly or through others");
            }
            refuseModuleRing(next);
        }
        openModules_.erase(&module);
        doneModules_.insert(&module);
    }

    void refuseRecursion(const Module& module, const Type& type) {
        if (doneTypes_.contains(&type)) return;
        openTypes_.insert(&type);
        if (type.kind == Kind::SetOf) follow(module, type, type.element);
        for (const Member& member : type.members) follow(module, type, member.use);
        openTypes_.erase(&type);
        doneTypes_.insert(&type);
    }

    // Types of other modules have their own turn: without a ring of modules they never lead back here.
    void follow(const Module& module, const Type& type, const TypeUse& use) {
        if (!use.type || types_.find({module.name, use.name}) == types_.end()) return;
        if (openTypes_.contains(use.type)) {
            throw Refusal(module.file, use.line,
                          "the type " + inQuotes(type.name) + " contains itself, through " + inQuotes(use.name));
        }
        refuseRecursion(module, *use.type);
    }

    Schema& schema_;
    std::map<std::string, const Module*> modules_;
    std::map<std::pair<std::string, std::string>, const Type*> types_; // by module and name
    std::set<const Module*> openModules_, doneModules_;
    std::set<const Type*> openTypes_, doneTypes_;
};

} // namespace

void resolve(Schema& schema) { Resolver(schema).run(); }

} // namespace zyn::schema
