#ifndef ORVO_BINDING_MODULE_CODES_H
#define ORVO_BINDING_MODULE_CODES_H

// The toolkit's result code for a module code.
[[nodiscard]] int MapReturnCodeLT2ORVO(int moduleCode) noexcept;

#endif  // ORVO_BINDING_MODULE_CODES_H
