// SPDX-License-Identifier: MIT
//
// quilletSendMessage(receiver, selector, …): asks quilletFindMethod for the implementation and
// jumps there with all the argument registers as they came; nil has none, and answers 0.
// Floating-point numbers travel in the same registers. The module aligns the stack to words, Linux
// to two.

        .syntax unified
        .arm
        .text
        .globl  quilletSendMessage
        .hidden quilletSendMessage
        .type   quilletSendMessage, %function
        .p2align 2
quilletSendMessage:
        .fnstart
        .cantunwind
        push    {r0-r3}
        push    {r4, lr}
        mov     r4, sp
        bic     sp, sp, #7
        bl      quilletFindMethod
        mov     ip, r0
        mov     sp, r4
        pop     {r4, lr}
        pop     {r0-r3}
        cmp     ip, #0
        bxne    ip
        mov     r0, #0
        mov     r1, #0
        bx      lr
        .fnend
        .size   quilletSendMessage, . - quilletSendMessage
        .section .note.GNU-stack, "", %progbits
