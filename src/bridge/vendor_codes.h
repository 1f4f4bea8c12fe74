#ifndef ORVO_BRIDGE_VENDOR_CODES_H
#define ORVO_BRIDGE_VENDOR_CODES_H

// The toolkit's result code for a vendor code.
[[nodiscard]] int MapReturnCodeLT2ORVO(int vendorCode) noexcept;

#endif  // ORVO_BRIDGE_VENDOR_CODES_H
