#include "indexer/crawl/network.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

namespace vela::indexer {

namespace {

struct Network4 {
  uint32_t first;
  int bits;
};

constexpr uint32_t Ip(uint32_t a, uint32_t b, uint32_t c = 0, uint32_t d = 0) {
  return a << 24 | b << 16 | c << 8 | d;
}

// The registry of special-purpose addresses of IPv4, and groups.
constexpr Network4 kSpecial4[] = {
    {Ip(0, 0), 8},           // this network
    {Ip(10, 0), 8},          // private
    {Ip(100, 64), 10},       // shared, behind a provider
    {Ip(127, 0), 8},         // loopback
    {Ip(169, 254), 16},      // link-local, where clouds answer about themselves
    {Ip(172, 16), 12},       // private
    {Ip(192, 0, 0), 24},     // protocols
    {Ip(192, 0, 2), 24},     // documentation
    {Ip(192, 88, 99), 24},   // former relays to IPv6
    {Ip(192, 168), 16},      // private
    {Ip(198, 18), 15},       // measurements
    {Ip(198, 51, 100), 24},  // documentation
    {Ip(203, 0, 113), 24},   // documentation
    {Ip(224, 0), 4},         // groups
    {Ip(240, 0), 4},         // reserved
};

bool IsPublic4(uint32_t address) {
  return std::ranges::none_of(kSpecial4, [address](const Network4& network) {
    return (address ^ network.first) >> (32 - network.bits) == 0;
  });
}

struct Network6 {
  std::array<uint8_t, 8> first;
  int bits;
};

// What of 2000::/3, where all public addresses of IPv6 are, is none.
constexpr Network6 kSpecial6[] = {
    {{0x20, 0x01, 0x00, 0x00}, 23},  // protocols, Teredo
    {{0x20, 0x01, 0x0D, 0xB8}, 32},  // documentation
    {{0x3F, 0xFF}, 20},              // documentation
};

bool IsIn(std::span<const uint8_t> address, std::span<const uint8_t> first, int bits) {
  for (size_t i = 0; bits > 0; ++i, bits -= 8) {
    const int shift = bits >= 8 ? 0 : 8 - bits;
    if ((address[i] ^ first[i]) >> shift != 0) return false;
  }
  return true;
}

uint32_t Ip4At(std::span<const uint8_t> bytes) {
  return Ip(bytes[0], bytes[1], bytes[2], bytes[3]);
}

bool IsPublic6(std::span<const uint8_t> address) {
  // Addresses of IPv4 in those of IPv6: as they are, by translation, and by tunnels.
  constexpr std::array<uint8_t, 12> kMapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
  constexpr std::array<uint8_t, 12> kTranslated = {0x00, 0x64, 0xFF, 0x9B};
  constexpr std::array<uint8_t, 2> kTunnelled = {0x20, 0x02};
  if (IsIn(address, kMapped, 96) || IsIn(address, kTranslated, 96)) {
    return IsPublic4(Ip4At(address.subspan(12)));
  }
  if (IsIn(address, kTunnelled, 16)) return IsPublic4(Ip4At(address.subspan(2)));
  constexpr std::array<uint8_t, 1> kGlobal = {0x20};
  return IsIn(address, kGlobal, 3) && std::ranges::none_of(kSpecial6, [&](const Network6& network) {
           return IsIn(address, network.first, network.bits);
         });
}

}  // namespace

bool IsPublicAddress(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    sockaddr_in ip4 = {};
    memcpy(&ip4, &address, sizeof ip4);
    return IsPublic4(ntohl(ip4.sin_addr.s_addr));
  }
  if (address.sa_family == AF_INET6) {
    sockaddr_in6 ip6 = {};
    memcpy(&ip6, &address, sizeof ip6);
    return IsPublic6(ip6.sin6_addr.s6_addr);
  }
  return false;
}

}  // namespace vela::indexer
