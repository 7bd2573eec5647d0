#include "tests/foreign/caller.h"

#include "tests/support/temp_dir.h"

// Leaves eax, edx and the x87 stack as the function left them, whatever its type is. The registers that a
// function has to keep hold marks during the call.
asm(R"(
    .text
    .globl _foreign_call
_foreign_call:
    pushl %ebp
    movl %esp, %ebp
    pushl %ebx
    pushl %esi
    pushl %edi
    movl 8(%ebp), %ebx
    fnstcw 36(%ebx)
    stmxcsr 40(%ebx)
    movl 8(%ebx), %ecx
    leal 32(,%ecx,4), %edx
    movl %esp, %eax
    subl %edx, %eax
    andl $-16, %eax
    addl 12(%ebx), %eax
    movl %eax, %esp
    movl %eax, %edi
    movl 4(%ebx), %esi
    rep movsl
    movl %esp, 28(%ebx)
    movl 24(%ebx), %ecx
    movl (%ebx), %eax
    fldcw 16(%ebx)
    ldmxcsr 20(%ebx)
    movl $0xB0B0B0B0, %ebx
    movl $0x51515151, %esi
    movl $0xD1D1D1D1, %edi
    call *%eax
    movl 8(%ebp), %ecx
    movl %esp, 32(%ecx)
    leal -12(%ebp), %esp
    fnstcw 44(%ecx)
    stmxcsr 48(%ecx)
    movl %ebx, 52(%ecx)
    movl %esi, 56(%ecx)
    movl %edi, 60(%ecx)
    fnstenv 64(%ecx)
    fnclex
    fldcw 36(%ecx)
    ldmxcsr 40(%ecx)
    pushfl
    popl 92(%ecx)
    cld
    popl %edi
    popl %esi
    popl %ebx
    popl %ebp
    ret
)");

namespace {

// How many registers of the x87 stack are taken: two bits each, both set when it is empty.
int x87_depth(std::uint32_t tags) {
    int depth = 0;
    for (int i = 0; i < 8; ++i)
        depth += (tags >> 2 * i & 3) != 3;
    return depth;
}

std::string hexadecimal(std::uint32_t value) {
    char text[8];
    return {text, std::to_chars(text, text + sizeof text, value, 16).ptr};
}

} // namespace

void Caller::check(const char* name, const ForeignCall& made, std::uint32_t popped, bool returns_number) {
    const auto require = [&](bool kept, const char* what) {
        if (!kept) violations.push_back(std::string(name) + " does not keep " + what);
    };
    require(made.stack_after == made.stack_before + popped, "the stack");
    require(made.ebx == 0xB0B0B0B0 && made.esi == 0x51515151 && made.edi == 0xD1D1D1D1, "the registers");
    require((made.x87_after & 0xFFFF) == m_state.x87, "the x87 control word");
    require(((made.mxcsr_after ^ m_state.mxcsr) & mxcsr_control) == 0, "MXCSR");
    require(x87_depth(made.environment[2]) == (returns_number ? 1 : 0), "the x87 stack");
    require((made.flags & 0x400) == 0, "the direction flag");
}

void Caller::check_state(const char* who, std::uint32_t x87, std::uint32_t mxcsr) {
    std::uint32_t actual_x87 = 0, actual_mxcsr = 0;
    asm volatile("fnstcw %0\n\tstmxcsr %1" : "+m"(actual_x87), "=m"(actual_mxcsr));
    if (actual_x87 != x87 || ((actual_mxcsr ^ mxcsr) & mxcsr_control) != 0)
        violations.push_back(std::string(who) + " runs with control words " + hexadecimal(actual_x87) +
                             " and " + hexadecimal(actual_mxcsr));
}

void Caller::note_bytes(const void* bytes, std::size_t size) {
    std::uint32_t hash = 2166136261u; // FNV-1a
    for (std::size_t i = 0; bytes && i < size; ++i)
        hash = (hash ^ static_cast<const unsigned char*>(bytes)[i]) * 16777619u;
    note(size, hash);
}

void Caller::note_file(const std::string& path) {
    const std::string bytes = read_file(path);
    note_bytes(bytes.data(), bytes.size());
}

std::string Caller::file_content() const {
    return written_file.empty() ? "" : read_file(written_file);
}
