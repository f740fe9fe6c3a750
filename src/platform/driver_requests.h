// What a wireless back-end tells the layers below it about its driver
// requests, so the recorder can write each request's fields and keep its
// bytes CPU-neutral without knowing the chipset. Every request carries an
// iw_request; a back-end hands a table of these over with the seams.
#pragma once
#include <cstddef>
#include <cstdint>

namespace lynd {

// One multi-byte field of a byte payload, turned between host and trace order.
struct ByteField {
    uint16_t offset;
    uint8_t width;  // 2, 4 or 8
};

// A byte payload's layout. With record_min 0 it is one block with its fields
// at fixed offsets; otherwise records one after another, each at least
// record_min bytes with its own u16 length at length_at, fields per record.
struct ByteLayout {
    const ByteField* fields;
    size_t field_count;
    size_t record_min;
    size_t length_at;
    const uint16_t* macs;  // offsets of 6-byte addresses, which an anonymized trace hides
    size_t mac_count;
};

// What the daemon fills into the request before the call.
enum class DriverIn : uint8_t {
    NOTHING,  // the interface name only
    VALUE,    // u.value
    COMMAND,  // u.data.length bytes at u.data.pointer
    ROOM,     // u.data.length: the room offered for the answer
};

// What the driver answers into it.
enum class DriverOut : uint8_t {
    NOTHING,
    VALUE,    // u.value
    MODE,     // u.mode
    ADDRESS,  // u.addr
    TABLE,    // u.data.length bytes at u.data.pointer, never more than most
};

struct DriverRequest {
    unsigned long number;
    DriverIn in;
    DriverOut out;
    size_t most;               // TABLE: the most bytes an answer holds
    const ByteLayout* layout;  // of a COMMAND's or TABLE's bytes; null: kept as they are
};

struct DriverRequests {
    const DriverRequest* rows;
    size_t count;
};

// The row of number; null when d is null or has none.
const DriverRequest* find_driver_request(const DriverRequests* d, unsigned long number);

// Fields inside the block or the fixed part of a record and apart from each
// other and from the length, so that turning them twice gives the bytes back.
constexpr bool byte_layout_sound(const ByteLayout& l) {
    if (l.record_min != 0 && l.length_at + 2 > l.record_min)
        return false;
    for (size_t i = 0; i < l.field_count; i++) {
        const ByteField& f = l.fields[i];
        size_t end = f.offset + f.width;
        if ((f.width != 2 && f.width != 4 && f.width != 8) || (l.record_min != 0 && end > l.record_min))
            return false;
        if (l.record_min != 0 && f.offset < l.length_at + 2 && l.length_at < end)
            return false;
        for (size_t j = 0; j < i; j++)
            if (f.offset < l.fields[j].offset + l.fields[j].width && l.fields[j].offset < end)
                return false;
    }
    return true;
}

}  // namespace lynd
