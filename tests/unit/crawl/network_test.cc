#include "indexer/crawl/network.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <cstring>
#include <string>

namespace vela::indexer {
namespace {

bool IsPublic(const std::string& text) {
  sockaddr_storage storage = {};
  if (text.find(':') == text.npos) {
    sockaddr_in ip4 = {};
    ip4.sin_family = AF_INET;
    EXPECT_EQ(inet_pton(AF_INET, text.c_str(), &ip4.sin_addr), 1) << text;
    memcpy(&storage, &ip4, sizeof ip4);
  } else {
    sockaddr_in6 ip6 = {};
    ip6.sin6_family = AF_INET6;
    EXPECT_EQ(inet_pton(AF_INET6, text.c_str(), &ip6.sin6_addr), 1) << text;
    memcpy(&storage, &ip6, sizeof ip6);
  }
  return IsPublicAddress(reinterpret_cast<const sockaddr&>(storage));
}

TEST(Network, KnowsWhatIsOpenToAll) {
  for (const char* address :
       {"1.1.1.1", "9.255.255.255", "11.0.0.0", "100.63.255.255", "100.128.0.0", "172.15.255.255",
        "172.32.0.0", "192.167.255.255", "198.17.255.255", "198.20.0.0", "223.255.255.255",
        "2a00:1450::1", "2001:200::1", "::ffff:1.1.1.1", "64:ff9b::101:101", "2002:101:101::1"}) {
    EXPECT_TRUE(IsPublic(address)) << address;
  }
}

TEST(Network, KnowsWhatIsNot) {
  for (const char* address : {"0.0.0.0",
                              "10.0.0.1",
                              "100.64.0.1",
                              "127.0.0.1",
                              "127.255.255.254",
                              "169.254.169.254",
                              "172.16.0.1",
                              "172.31.255.255",
                              "192.0.0.1",
                              "192.0.2.1",
                              "192.168.1.1",
                              "198.18.0.1",
                              "198.19.255.255",
                              "198.51.100.1",
                              "203.0.113.1",
                              "224.0.0.1",
                              "255.255.255.255",
                              "::",
                              "::1",
                              "::7f00:1",
                              "::ffff:127.0.0.1",
                              "::ffff:10.1.2.3",
                              "64:ff9b::7f00:1",
                              "64:ff9b:1::1",
                              "100::1",
                              "2001::1",
                              "2001:db8::1",
                              "2002:7f00:1::1",
                              "2002:c0a8:101::1",
                              "3fff::1",
                              "fc00::1",
                              "fd12::1",
                              "fe80::1",
                              "fec0::1",
                              "ff02::1",
                              "4000::1"}) {
    EXPECT_FALSE(IsPublic(address)) << address;
  }
  sockaddr other = {};
  other.sa_family = AF_UNIX;
  EXPECT_FALSE(IsPublicAddress(other));
}

}  // namespace
}  // namespace vela::indexer
