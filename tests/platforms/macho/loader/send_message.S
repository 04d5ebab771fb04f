// SPDX-License-Identifier: MIT
//
// quilletSendMessage(receiver, selector, …): asks quilletFindMethod for the implementation and
// jumps there with all the argument registers as they came. It does not know how many are in use,
// nor what the answer will be, so a nil receiver answers 0 in every register that answers come in.

        .text
        .globl  quilletSendMessage
        .hidden quilletSendMessage
        .type   quilletSendMessage, %function
        .p2align 4
quilletSendMessage:
        .cfi_startproc

#if defined(__x86_64__)

        testq   %rdi, %rdi
        jz      1f
        pushq   %rbp
        .cfi_def_cfa_offset 16
        .cfi_offset %rbp, -16
        movq    %rsp, %rbp
        .cfi_def_cfa_register %rbp
        subq    $0xC0, %rsp
        movaps  %xmm0, 0x00(%rsp)
        movaps  %xmm1, 0x10(%rsp)
        movaps  %xmm2, 0x20(%rsp)
        movaps  %xmm3, 0x30(%rsp)
        movaps  %xmm4, 0x40(%rsp)
        movaps  %xmm5, 0x50(%rsp)
        movaps  %xmm6, 0x60(%rsp)
        movaps  %xmm7, 0x70(%rsp)
        movq    %rdi, 0x80(%rsp)
        movq    %rsi, 0x88(%rsp)
        movq    %rdx, 0x90(%rsp)
        movq    %rcx, 0x98(%rsp)
        movq    %r8, 0xA0(%rsp)
        movq    %r9, 0xA8(%rsp)
        movq    %rax, 0xB0(%rsp)
        call    quilletFindMethod@PLT
        movq    %rax, %r11
        movaps  0x00(%rsp), %xmm0
        movaps  0x10(%rsp), %xmm1
        movaps  0x20(%rsp), %xmm2
        movaps  0x30(%rsp), %xmm3
        movaps  0x40(%rsp), %xmm4
        movaps  0x50(%rsp), %xmm5
        movaps  0x60(%rsp), %xmm6
        movaps  0x70(%rsp), %xmm7
        movq    0x80(%rsp), %rdi
        movq    0x88(%rsp), %rsi
        movq    0x90(%rsp), %rdx
        movq    0x98(%rsp), %rcx
        movq    0xA0(%rsp), %r8
        movq    0xA8(%rsp), %r9
        movq    0xB0(%rsp), %rax
        leave
        .cfi_def_cfa %rsp, 8
        jmp     *%r11
1:      xorl    %eax, %eax
        xorl    %edx, %edx
        xorps   %xmm0, %xmm0
        xorps   %xmm1, %xmm1
        ret

#elif defined(__aarch64__)

        cbz     x0, 1f
        stp     x29, x30, [sp, #-0xE0]!
        .cfi_def_cfa_offset 0xE0
        .cfi_offset x29, -0xE0
        .cfi_offset x30, -0xD8
        mov     x29, sp
        stp     q0, q1, [sp, #0x10]
        stp     q2, q3, [sp, #0x30]
        stp     q4, q5, [sp, #0x50]
        stp     q6, q7, [sp, #0x70]
        stp     x0, x1, [sp, #0x90]
        stp     x2, x3, [sp, #0xA0]
        stp     x4, x5, [sp, #0xB0]
        stp     x6, x7, [sp, #0xC0]
        str     x8, [sp, #0xD0]
        bl      quilletFindMethod
        mov     x16, x0
        ldp     q0, q1, [sp, #0x10]
        ldp     q2, q3, [sp, #0x30]
        ldp     q4, q5, [sp, #0x50]
        ldp     q6, q7, [sp, #0x70]
        ldp     x0, x1, [sp, #0x90]
        ldp     x2, x3, [sp, #0xA0]
        ldp     x4, x5, [sp, #0xB0]
        ldp     x6, x7, [sp, #0xC0]
        ldr     x8, [sp, #0xD0]
        ldp     x29, x30, [sp], #0xE0
        .cfi_def_cfa_offset 0
        .cfi_restore x29
        .cfi_restore x30
        br      x16
1:      mov     x0, #0
        mov     x1, #0
        movi    d0, #0
        movi    d1, #0
        movi    d2, #0
        movi    d3, #0
        ret

#endif

        .cfi_endproc
        .size   quilletSendMessage, . - quilletSendMessage
        .section .note.GNU-stack, "", %progbits
