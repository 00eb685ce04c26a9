// network.h: which networks an address of the internet belongs to.
#pragma once

#include <sys/socket.h>

namespace vela::indexer {

// Whether anybody on the internet may be at that address of IPv4 or IPv6: it is of no private,
// local, shared, documented or reserved network and names no group. False for other families.
bool IsPublicAddress(const sockaddr& address);

}  // namespace vela::indexer
