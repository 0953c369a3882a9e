#pragma once

#include <atomic>
#include <utility>

namespace vantrel {

/// Base of the library's shared objects. The count starts at zero; Ref takes the first reference. Retain and
/// release are safe from any thread, the object itself only from its own.
class RefCounted
{
public:
    RefCounted() = default;
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    void retain() const noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }

    /// Gives up one reference; the last one deletes the object.
    virtual void release() const noexcept
    {
        if (m_count.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

protected:
    virtual ~RefCounted() = default;

private:
    mutable std::atomic<int> m_count{0};
};

/// Owning pointer to a RefCounted object.
template <typename T>
class Ref
{
public:
    Ref() noexcept = default;
    Ref(std::nullptr_t) noexcept {}
    explicit Ref(T* object) noexcept
        : m_object(object)
    {
        if (m_object)
            m_object->retain();
    }
    Ref(const Ref& other) noexcept
        : Ref(other.m_object)
    {
    }
    Ref(Ref&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr))
    {
    }
    template <typename U>
    Ref(const Ref<U>& other) noexcept
        : Ref(other.get())
    {
    }
    ~Ref()
    {
        if (m_object)
            m_object->release();
    }
    Ref& operator=(Ref other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.m_object == b.m_object; }

private:
    T* m_object = nullptr;
};

template <typename T, typename... Args>
Ref<T> makeRef(Args&&... args)
{
    return Ref<T>(new T(std::forward<Args>(args)...));
}

} // namespace vantrel
