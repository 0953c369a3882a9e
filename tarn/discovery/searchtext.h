#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// Where searches and answers meet, and the datagrams of JSON that they are: a search is {"locate": 1}, the
/// answer goes to the one who asks, as {"peer": {"name": ..., ...}}.
namespace vantrel::discovery {

inline constexpr const char* group = "239.255.110.60";
inline constexpr const char* group6 = "ff12::6e3c"; // of one link, as the other by its TTL
inline constexpr unsigned short port = 11062;
inline constexpr std::size_t maxDatagram = 1400;

/// What a server says of itself, by name: texts only.
using Attributes = std::map<std::string, std::string>;

std::string questionText();
bool isQuestion(std::string_view datagram);

/// As one datagram; empty when they do not fit into one.
std::string answerText(const Attributes& attributes);
/// What a server says of itself (docs/protocol.md), as far as it is texts; anything else in it is passed
/// over. Nothing when it is no answer.
std::optional<Attributes> parseAnswer(std::string_view datagram);

} // namespace vantrel::discovery
