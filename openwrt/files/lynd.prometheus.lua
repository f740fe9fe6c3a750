-- lynd's numbers for prometheus-node-exporter-lua: path states and figures,
-- clients per path, and the daemon's counters since it started.
-- Installed as /usr/lib/lua/prometheus-collectors/lynd.lua; the exporter
-- provides the global metric(name, type, labels, value).
--
-- Metrics (names are stable; see the README's "Metrics" section):
--   lynd_up                                  1 when the daemon answered
--   lynd_path_state{path,type,state}         state code: 1 UNLINK, 2 NORMAL,
--                                            3 WEAKLINK, 4 WEAKLINK+ABNORMAL, 5 ABNORMAL
--   lynd_path_rate_mbps{path}
--   lynd_path_utilisation_percent{path}
--   lynd_path_quota{path}                    free airtime, 10000 = all
--   lynd_clients{path}
--   lynd_moves_total{reason}
--   lynd_moves_held_total                    held by the flap guard
--   lynd_evacuations_total
--   lynd_emergency_choices_total
--   lynd_path_state_changes_total{state}
--   lynd_bus_reconnects_total
--   lynd_bridge_call_failures_total
--   lynd_tool_run_failures_total
--   lynd_events_total{type}
--   lynd_malformed_datagrams_total

local ubus = require "ubus"

local state_codes = {
  UNINITED = 0, UNLINK = 1, NORMAL = 2, WEAKLINK = 3, ["WEAKLINK+ABNORMAL"] = 4, ABNORMAL = 5,
}

-- Keys in sorted order, so the output reads the same on every scrape.
local function sorted_keys(t)
  local keys = {}
  for k in pairs(t) do keys[#keys + 1] = k end
  table.sort(keys)
  return keys
end

local function number(v)
  if type(v) == "number" then return v end
  return nil
end

local function by_key(name, mtype, label, t)
  if type(t) ~= "table" then return end
  local out = metric(name, mtype)
  for _, k in ipairs(sorted_keys(t)) do
    local v = number(t[k])
    if v then out({ [label] = k }, v) end
  end
end

local function scrape_paths(paths)
  local list = type(paths) == "table" and paths.paths or nil
  if type(list) ~= "table" then return end
  local state = metric("lynd_path_state", "gauge")
  local rate = metric("lynd_path_rate_mbps", "gauge")
  local util = metric("lynd_path_utilisation_percent", "gauge")
  local quota = metric("lynd_path_quota", "gauge")
  local clients = metric("lynd_clients", "gauge")
  for _, p in ipairs(list) do
    local name = tostring(p.name or "")
    local code = state_codes[p.state]
    if code then state({ path = name, type = tostring(p.type or ""), state = p.state }, code) end
    if number(p.rate) then rate({ path = name }, p.rate) end
    if number(p.util) then util({ path = name }, p.util) end
    if number(p.quota) then quota({ path = name }, p.quota) end
    if number(p.clients) then clients({ path = name }, p.clients) end
  end
end

local plain_counters = {
  { "moves_held", "lynd_moves_held_total" },
  { "evacuations", "lynd_evacuations_total" },
  { "emergency_choices", "lynd_emergency_choices_total" },
  { "bus_reconnects", "lynd_bus_reconnects_total" },
  { "bridge_call_failures", "lynd_bridge_call_failures_total" },
  { "tool_run_failures", "lynd_tool_run_failures_total" },
  { "malformed_datagrams", "lynd_malformed_datagrams_total" },
}

local function scrape_counters(c)
  if type(c) ~= "table" then return end
  by_key("lynd_moves_total", "counter", "reason", c.moves_by_reason)
  for _, pc in ipairs(plain_counters) do
    local v = number(c[pc[1]])
    if v then metric(pc[2], "counter", nil, v) end
  end
  by_key("lynd_path_state_changes_total", "counter", "state", c.state_changes)
  by_key("lynd_events_total", "counter", "type", c.events)
end

local function scrape()
  local conn = ubus.connect()
  if not conn then
    metric("lynd_up", "gauge", nil, 0)
    return
  end
  local status = conn:call("lynd", "status", {})
  metric("lynd_up", "gauge", nil, status and 1 or 0)
  if status then
    scrape_paths(conn:call("lynd", "paths", {}))
    scrape_counters(conn:call("lynd", "counters", {}))
  end
  conn:close()
end

return { scrape = scrape }
