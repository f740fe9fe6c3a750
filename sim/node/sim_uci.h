// UCI values of the simulated node, keyed by the exact path the daemon asks
// for ("sysmode.sysmode.mode", "traffic_separation.@ts_policy[0].ssid").
#pragma once
#include <map>
#include <string>

#include "platform/uci_store.h"

namespace lynd {

class SimUci : public UciStore {
public:
    void set(const std::string& path, const std::string& value) { values_[path] = value; }
    void erase(const std::string& path) { values_.erase(path); }
    // Makes every read fail as if no UCI context could be had.
    void set_context_failure(bool on) { context_fails_ = on; }
    UciResult get(char* path, char* value, size_t size) override;

private:
    std::map<std::string, std::string> values_;
    bool context_fails_ = false;
};

}  // namespace lynd
