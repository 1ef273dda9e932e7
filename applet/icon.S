// The applet's icon: 32 by 32 pixels, RGBA.
    .section .rodata
    .balign 16
    .globl velmora_icon
    .hidden velmora_icon
    .type velmora_icon, @object
velmora_icon:
    .incbin "icon.png"
    .size velmora_icon, . - velmora_icon
    .section .note.GNU-stack, "", @progbits
