// What the compiler's libraries ask of POSIX threads, for exceptions and static locals, by means of the
// system alone. The compiler's own thread library is made for programs: a DLL that carries it leaves a slot
// of thread-local storage, handles and memory behind whenever it is unloaded, and after a thousand times the
// process has no slots left.
#include <atomic>
#include <cerrno>
#include <pthread.h>
#include <windows.h>

namespace __gnu_cxx {
void __freeres(); // of the compiler's library: what it keeps for exceptions when memory has run out
}

namespace {

// Every mutex is this one lock. They are held for a few instructions, hardly ever by two threads, and some of
// them again by their owner.
class Lock {
  public:
    void enter() noexcept {
        const DWORD self = GetCurrentThreadId();
        if (m_owner != self) {
            AcquireSRWLockExclusive(&m_lock);
            m_owner = self;
        }
        ++m_depth;
    }
    void leave() noexcept {
        if (--m_depth > 0) return;
        m_owner = 0;
        ReleaseSRWLockExclusive(&m_lock);
    }

  private:
    SRWLOCK m_lock = SRWLOCK_INIT;
    std::atomic<DWORD> m_owner = 0;
    unsigned m_depth = 0;
};
constinit Lock the_lock;

// The one key: it holds a thread's copies of what the libraries declare thread-local. The system calls for
// the end of a thread, and for all threads when the slot is released.
class Slot {
  public:
    Slot() noexcept = default;
    // The last of the module's destructors: the first to be constructed is the last to be destroyed.
    ~Slot() {
        if (m_index != FLS_OUT_OF_INDEXES) FlsFree(m_index);
        m_index = FLS_OUT_OF_INDEXES;
        __gnu_cxx::__freeres();
    }
    bool claim(void (*end)(void*)) noexcept;
    void* get() const noexcept { return FlsGetValue(m_index); }
    bool set(void* value) const noexcept { return FlsSetValue(m_index, value) != FALSE; }

  private:
    static void WINAPI end_of_thread(void* value) noexcept;

    DWORD m_index = FLS_OUT_OF_INDEXES;
    void (*m_end)(void*) = nullptr;
};
__attribute__((init_priority(101))) constinit Slot the_slot;

bool Slot::claim(void (*end)(void*)) noexcept {
    if (m_index != FLS_OUT_OF_INDEXES) return false;
    m_end = end;
    m_index = FlsAlloc(end_of_thread);
    return m_index != FLS_OUT_OF_INDEXES;
}

void WINAPI Slot::end_of_thread(void* value) noexcept {
    if (value && the_slot.m_end) the_slot.m_end(value);
}

} // namespace

extern "C" {

int pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*) {
    return 0;
}
int pthread_mutex_destroy(pthread_mutex_t*) {
    return 0;
}
int pthread_mutex_lock(pthread_mutex_t*) {
    the_lock.enter();
    return 0;
}
int pthread_mutex_unlock(pthread_mutex_t*) {
    the_lock.leave();
    return 0;
}

// A wait may end at any time: who waits looks again.
int pthread_cond_wait(pthread_cond_t*, pthread_mutex_t*) {
    the_lock.leave();
    Sleep(1);
    the_lock.enter();
    return 0;
}
int pthread_cond_broadcast(pthread_cond_t*) {
    return 0;
}

int pthread_once(pthread_once_t* once, void (*run)()) {
    the_lock.enter();
    if (*once == PTHREAD_ONCE_INIT) {
        run();
        *once = ~PTHREAD_ONCE_INIT;
    }
    the_lock.leave();
    return 0;
}

int pthread_key_create(pthread_key_t* key, void (*end)(void*)) {
    *key = 0;
    return the_slot.claim(end) ? 0 : EAGAIN;
}
void* pthread_getspecific(pthread_key_t) {
    return the_slot.get();
}
int pthread_setspecific(pthread_key_t, const void* value) {
    return the_slot.set(const_cast<void*>(value)) ? 0 : ENOMEM;
}

} // extern "C"
