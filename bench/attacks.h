// Messages of an attacker: of each kind, what costs a decoder the most for each octet.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zyn::bench {

using Decode = int32_t (*)(const uint8_t* octets, uint32_t length); // through an entry point

// One kind of attack. make gives a message of about so many octets.
struct Attack {
    std::string name;
    Decode decode;
    std::function<std::vector<uint8_t>(std::size_t)> make;
};
std::vector<Attack> attacks();

// Short messages in which one length claims gigabytes: each length of one message of each alternative, in turn.
struct Claim {
    std::string name;
    Decode decode;
    std::vector<uint8_t> octets;
};
std::vector<Claim> claims();

} // namespace zyn::bench
