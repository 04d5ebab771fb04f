// SPDX-License-Identifier: MIT
//
// Where the small functions of convention.cpp go on, each with its own value in ip.

        .syntax unified
        .arm
        .text

// From the module: calls ip(words), the words being all arguments in a row. Those that came in
// registers are put below those on the stack, and the stack is aligned as Linux wants it.
        .globl  quilletCallWithWords
        .hidden quilletCallWithWords
        .type   quilletCallWithWords, %function
        .p2align 2
quilletCallWithWords:
        .fnstart
        .cantunwind
        push    {r0-r3}
        mov     r0, sp
        push    {r4, lr}
        mov     r4, sp
        bic     sp, sp, #7
        blx     ip
        mov     sp, r4
        pop     {r4, lr}
        add     sp, sp, #16
        bx      lr
        .fnend
        .size   quilletCallWithWords, . - quilletCallWithWords

// From Linux: calls ip in the module with the same arguments, of which twelve words of the stack
// are copied, and keeps r9.
        .globl  quilletCallInModule
        .hidden quilletCallInModule
        .type   quilletCallInModule, %function
        .p2align 2
quilletCallInModule:
        .fnstart
        .cantunwind
        push    {r4-r9, r11, lr}
        mov     r11, sp
        add     lr, sp, #32 + 48        // behind the last argument
        ldmdb   lr!, {r4-r9}
        push    {r4-r9}
        ldmdb   lr!, {r4-r9}
        push    {r4-r9}
        blx     ip
        mov     sp, r11
        pop     {r4-r9, r11, pc}
        .fnend
        .size   quilletCallInModule, . - quilletCallInModule

        .section .note.GNU-stack, "", %progbits
