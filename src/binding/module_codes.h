#ifndef ORVO_BINDING_MODULE_CODES_H
#define ORVO_BINDING_MODULE_CODES_H

namespace orvo {

// The toolkit's result code for a module code.
[[nodiscard]] int MapReturnCodeLT2ORVO(int moduleCode) noexcept;

}  // namespace orvo

#endif  // ORVO_BINDING_MODULE_CODES_H
