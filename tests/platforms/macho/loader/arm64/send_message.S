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
        cbz     x16, 1f
        br      x16
1:      mov     x0, #0
        mov     x1, #0
        movi    d0, #0
        movi    d1, #0
        movi    d2, #0
        movi    d3, #0
        ret

        .cfi_endproc
        .size   quilletSendMessage, . - quilletSendMessage
        .section .note.GNU-stack, "", %progbits
