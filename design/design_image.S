// The packed design as an object: writable, hidden from other libraries.
    .data
    .balign 16
    .globl velmora_design_image
    .hidden velmora_design_image
    .type velmora_design_image, @object
velmora_design_image:
    .incbin "velmora_design.bin"
    .size velmora_design_image, . - velmora_design_image
    .section .note.GNU-stack, "", @progbits
