// asn1c's side: reads "name module type octets" lines, decodes each with what asn1c generates from the schema, and
// writes an answer in the form that interop/answers.h describes: what it has decoded, and what it makes of that again.
#include <cstring>
#include <iostream>
#include <sstream>
#include <vector>

#include "interop/text.h"

extern "C" {
#include <BIT_STRING.h>
#include <BOOLEAN.h>
#include <NativeInteger.h>
#include <NativeReal.h>
#include <OCTET_STRING.h>
#include <asn_SET_OF.h>
#include <asn_application.h>
#include <constr_CHOICE.h>
#include <constr_SEQUENCE.h>
#include <constr_SET_OF.h>

extern asn_TYPE_descriptor_t* asn_pdu_collection[];
}

namespace {

using namespace zyn::interop;

const void* memberOf(const asn_TYPE_member_t& row, const void* structure) {
    const void* member = static_cast<const char*>(structure) + row.memb_offset;
    return (row.flags & ATF_POINTER) ? *static_cast<void* const*>(member) : member;
}

std::string below(const std::string& path, const std::string& name) { return path.empty() ? name : path + "." + name; }

void write(const asn_TYPE_descriptor_t& type, const void* value, const std::string& path);

void writeSequence(const asn_TYPE_descriptor_t& type, const void* value, const std::string& path) {
    bool any = false;
    for (int i = 0; i < type.elements_count; ++i) {
        const asn_TYPE_member_t& row = type.elements[i];
        const void* member = memberOf(row, value);
        if (!member) continue;
        write(*row.type, member, below(path, row.name));
        any = true;
    }
    if (!any) std::cout << path << " {}\n";
}

void writeChoice(const asn_TYPE_descriptor_t& type, const void* value, const std::string& path) {
    const auto* specifics = static_cast<const asn_CHOICE_specifics_t*>(type.specifics);
    int present; // 1 for the first alternative
    std::memcpy(&present, static_cast<const char*>(value) + specifics->pres_offset, sizeof present);
    const asn_TYPE_member_t& row = type.elements[present - 1];
    write(*row.type, memberOf(row, value), below(path, row.name));
}

void writeList(const asn_TYPE_descriptor_t& type, const void* value, const std::string& path) {
    using Set = A_SET_OF(void);
    const auto& set = *static_cast<const Set*>(value);
    std::cout << path << " [" << set.count << "]\n";
    for (int i = 0; i < set.count; ++i) write(*type.elements[0].type, set.array[i], below(path, std::to_string(i)));
}

// A type is told by its decoder. Those that the schema derives have that of their base, once it has been called.
void write(const asn_TYPE_descriptor_t& type, const void* value, const std::string& path) {
    const auto decodedAs = [&](const asn_TYPE_descriptor_t& base) { return type.ber_decoder == base.ber_decoder; };
    if (type.ber_decoder == SEQUENCE_decode_ber) return writeSequence(type, value, path);
    if (type.ber_decoder == CHOICE_decode_ber) return writeChoice(type, value, path);
    if (type.ber_decoder == SET_OF_decode_ber) return writeList(type, value, path);
    std::cout << path << ' ';
    if (decodedAs(asn_DEF_NativeInteger)) {
        std::cout << *static_cast<const long*>(value);
    } else if (decodedAs(asn_DEF_NativeReal)) {
        std::cout << realText(*static_cast<const double*>(value));
    } else if (decodedAs(asn_DEF_BOOLEAN)) {
        std::cout << (*static_cast<const BOOLEAN_t*>(value) ? "true" : "false");
    } else if (&type == &asn_DEF_BIT_STRING) {
        const auto& bits = *static_cast<const BIT_STRING_t*>(value);
        const int count = bits.size * 8 - bits.bits_unused;
        if (count < 0) std::cout << "fewer bits than none";
        else std::cout << bitsText(bits.buf, static_cast<std::size_t>(count));
    } else if (&type == &asn_DEF_OCTET_STRING) {
        const auto& text = *static_cast<const OCTET_STRING_t*>(value);
        std::cout << octetsText(text.buf, static_cast<std::size_t>(text.size));
    } else {
        std::cout << "of the unknown type " << type.name;
    }
    std::cout << '\n';
}

asn_TYPE_descriptor_t* descriptorOf(const std::string& type) {
    for (asn_TYPE_descriptor_t** row = asn_pdu_collection; *row; ++row) {
        if ((*row)->name == type) return *row;
    }
    return nullptr;
}

std::vector<uint8_t> octetsOf(const std::string& hex) {
    std::vector<uint8_t> octets;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        octets.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return octets;
}

void answer(asn_TYPE_descriptor_t& type, const std::vector<uint8_t>& octets) {
    void* value = nullptr;
    const asn_dec_rval_t result = ber_decode(nullptr, &type, &value, octets.data(), octets.size());
    if (result.code != RC_OK) {
        std::cout << "refused " << (result.code == RC_WMORE ? "RC_WMORE" : "RC_FAIL") << '\n';
    } else {
        std::cout << "taken\n";
        write(type, value, "");
        static uint8_t buffer[1 << 20];
        const asn_enc_rval_t size = der_encode_to_buffer(&type, value, buffer, sizeof buffer);
        if (size.encoded < 0) std::cout << "< not\n";
        else std::cout << "< " << hexOf(buffer, static_cast<std::size_t>(size.encoded)) << '\n';
    }
    ASN_STRUCT_FREE(type, value);
}

} // namespace

int main() {
    std::ios::sync_with_stdio(false);
    std::string line, name, module, type, hex;
    while (std::getline(std::cin, line)) {
        std::istringstream(line + " ") >> name >> module >> type >> hex;
        asn_TYPE_descriptor_t* descriptor = descriptorOf(type);
        if (!descriptor) {
            std::cerr << "asn1c knows no type " << type << '\n';
            return 1;
        }
        std::cout << "> " << name << ' ' << std::flush; // tells which message it was, should the decoder not come back
        answer(*descriptor, octetsOf(hex));
        hex.clear();
    }
}
