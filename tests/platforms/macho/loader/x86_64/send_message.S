// SPDX-License-Identifier: MIT
//
// quilletSendMessage(receiver, selector, …): asks quilletFindMethod for the implementation and
// jumps there with all the argument registers as they came. It does not know how many are in use,
// nor what the answer will be, so nil, which has none, answers 0 in every register that answers
// come in.

        .text
        .globl  quilletSendMessage
        .hidden quilletSendMessage
        .type   quilletSendMessage, %function
        .p2align 4
quilletSendMessage:
        .cfi_startproc

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
        testq   %r11, %r11
        jz      1f
        jmp     *%r11
1:      xorl    %eax, %eax
        xorl    %edx, %edx
        xorps   %xmm0, %xmm0
        xorps   %xmm1, %xmm1
        ret

        .cfi_endproc
        .size   quilletSendMessage, . - quilletSendMessage
        .section .note.GNU-stack, "", %progbits
