// Files of the source tree inside the program.
#ifndef ORSOLVA_OUTPUT_EMBEDDED_FILE_H
#define ORSOLVA_OUTPUT_EMBEDDED_FILE_H

#if defined(_WIN32)
#define ORSOLVA_READ_ONLY ".section .rdata,\"dr\"\n"
#else
#define ORSOLVA_READ_ONLY ".section .rodata\n"
#endif

// Embeds a file as it is, from the symbol NAME_begin to NAME_end. Sources say by OBJECT_DEPENDS that they
// need it.
#define ORSOLVA_EMBED(NAME, FILE)                         \
  __asm__(ORSOLVA_READ_ONLY ".global " NAME               \
                            "_begin\n"                    \
                            ".global " NAME "_end\n" NAME \
                            "_begin:\n"                   \
                            ".incbin \"" FILE "\"\n" NAME \
                            "_end:\n"                     \
                            ".byte 0\n"                   \
                            ".text\n")

#endif  // ORSOLVA_OUTPUT_EMBEDDED_FILE_H
