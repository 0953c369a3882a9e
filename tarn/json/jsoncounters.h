#pragma once

#include <atomic>
#include <cstdint>

namespace vantrel {

/// Counts what an edit and a diff touch, so that a test can hold their cost without a clock. Off until
/// switched on; for the whole process.
struct JsonCounters
{
    static inline std::atomic<bool> enabled{false};
    static inline std::atomic<std::uint64_t> nodesMade{0}; // nodes of objects and arrays taken from the heap
    static inline std::atomic<std::uint64_t> nodesVisited{0}; // nodes that a diff or a comparison opened

    static void start() noexcept
    {
        nodesMade = 0;
        nodesVisited = 0;
        enabled = true;
    }
    static void stop() noexcept { enabled = false; }

    static void made() noexcept
    {
        if (enabled.load(std::memory_order_relaxed))
            nodesMade.fetch_add(1, std::memory_order_relaxed);
    }
    static void visited() noexcept
    {
        if (enabled.load(std::memory_order_relaxed))
            nodesVisited.fetch_add(1, std::memory_order_relaxed);
    }
};

} // namespace vantrel
