-- Runs the exporter collector against replies recorded by `lynd-sim run
-- --out`, with stubs of the exporter's metric() and of the ubus module,
-- and reads its output back as the Prometheus text exposition format.
-- Usage: lua5.1 collector_test.lua COLLECTOR.lua UBUS_CALLS.json
local cjson = require "cjson"

local collector_path, calls_path = arg[1], arg[2]
local failures = 0
local function check(ok, what)
  if not ok then
    failures = failures + 1
    io.stderr:write("FAIL: " .. what .. "\n")
  end
end

local function read_all(path)
  local f = assert(io.open(path, "rb"))
  local text = f:read("*a")
  f:close()
  return text
end

-- The last successful reply of each method, as the daemon gave it.
local replies = {}
for _, c in ipairs(cjson.decode(read_all(calls_path))) do
  if c.object == "lynd" and c.status == 0 and type(c.reply) == "table" then replies[c.method] = c.reply end
end
check(replies.status ~= nil, "the recording holds a status reply")
check(replies.paths ~= nil, "the recording holds a paths reply")

-- The ubus module: replies by method, a connection that records its
-- timeout (the binding waits 30 s per call without one) and its close.
-- A hung lynd answers nothing after the whole timeout; `waited` adds up
-- the seconds a scrape would have spent.
local closed, hung, waited = false, false, 0
package.preload["ubus"] = function()
  return {
    connect = function(_, timeout)
      local conn_timeout = timeout or 30
      return {
        call = function(_, object, method)
          if hung then
            waited = waited + conn_timeout
            return nil
          end
          return object == "lynd" and replies[method] or nil
        end,
        close = function() closed = true end,
      }
    end,
  }
end

-- The exporter's own shape: a TYPE line per metric() call, then samples.
local out = {}
local function print_metric(name, labels, value)
  local parts = {}
  if labels then
    local keys = {}
    for k in pairs(labels) do keys[#keys + 1] = k end
    table.sort(keys)
    for _, k in ipairs(keys) do parts[#parts + 1] = k .. '="' .. tostring(labels[k]) .. '"' end
  end
  local label_text = #parts > 0 and ("{" .. table.concat(parts, ",") .. "}") or ""
  out[#out + 1] = string.format("%s%s %s", name, label_text, tostring(value))
end
function metric(name, mtype, labels, value)
  out[#out + 1] = "# TYPE " .. name .. " " .. mtype
  local outputter = function(l, v) print_metric(name, l, v) end
  if value then outputter(labels, value) end
  return outputter
end

local collector = dofile(collector_path)
check(type(collector) == "table" and type(collector.scrape) == "function", "the collector returns { scrape = f }")
collector.scrape()
check(closed, "the collector closes its bus connection")

-- label="value" pairs, the value with \\, \" and \n escaped and no other
-- backslash, quote or newline in it; nil when the text is not that.
local function parse_labels(body)
  local labels, at = {}, 1
  while at <= #body do
    local k, open = body:match('^([a-zA-Z_][a-zA-Z0-9_]*)="()', at)
    if not k then return nil end
    local v, i = {}, open
    while true do
      local c = body:sub(i, i)
      if c == "" or c == "\n" then return nil end
      if c == '"' then break end
      if c == "\\" then
        local e = body:sub(i + 1, i + 1)
        local plain = ({ ["\\"] = "\\", ['"'] = '"', n = "\n" })[e]
        if not plain then return nil end
        v[#v + 1], i = plain, i + 2
      else
        v[#v + 1], i = c, i + 1
      end
    end
    labels[k] = table.concat(v)
    at = i + 1
    if at <= #body then
      if body:sub(at, at) ~= "," then return nil end
      at = at + 1
    end
  end
  return labels
end

-- Text exposition format: "# TYPE name type" once per name, before its
-- samples; samples "name{label=\"value\",...} number".
local name_re = "^[a-zA-Z_:][a-zA-Z0-9_:]*$"
local function read_exposition(lines)
local types, samples = {}, {}
for _, line in ipairs(lines) do
  local tname, ttype = line:match("^# TYPE (%S+) (%S+)$")
  if tname then
    check(tname:match(name_re) ~= nil, "metric name " .. tname)
    check(ttype == "gauge" or ttype == "counter", "type of " .. tname)
    check(types[tname] == nil, "one TYPE line for " .. tname)
    types[tname] = ttype
  else
    local name, rest = line:match("^([a-zA-Z_:][a-zA-Z0-9_:]*)(.*)$")
    check(name ~= nil, "a sample line: " .. line)
    name = name or ""
    local labels, value = {}, rest
    if rest:sub(1, 1) == "{" then
      local body, tail = rest:match("^{(.*)}(.*)$")
      check(body ~= nil, "labels closed: " .. line)
      body, value = body or "", tail or ""
      local parsed = parse_labels(body)
      check(parsed ~= nil, "label pairs in " .. line)
      labels = parsed or {}
    end
    local num = value:match("^ (%-?[0-9.eE+]+)$")
    check(num ~= nil and tonumber(num) ~= nil, "a number after the name: " .. line)
    check(types[name] ~= nil, "TYPE before the samples of " .. name)
    samples[#samples + 1] = { name = name, labels = labels, value = tonumber(num or "") }
  end
end
return types, samples
end
local types, samples = read_exposition(out)
local recorded = #samples

local function find(name, label, value)
  for _, s in ipairs(samples) do
    if s.name == name and (label == nil or s.labels[label] == value) then return s end
  end
  return nil
end

-- Every documented name is there, and the figures are the daemon's.
for _, name in ipairs({ "lynd_up", "lynd_path_state", "lynd_path_rate_mbps", "lynd_path_utilisation_percent",
  "lynd_path_quota", "lynd_clients", "lynd_moves_total", "lynd_moves_held_total", "lynd_evacuations_total",
  "lynd_emergency_choices_total", "lynd_path_state_changes_total", "lynd_bus_reconnects_total",
  "lynd_bridge_call_failures_total", "lynd_tool_run_failures_total", "lynd_events_total",
  "lynd_malformed_datagrams_total" }) do
  check(types[name] ~= nil, "metric " .. name .. " published")
end
check(find("lynd_up") and find("lynd_up").value == 1, "lynd_up is 1")
for _, p in ipairs(replies.paths and replies.paths.paths or {}) do
  local s = find("lynd_clients", "path", p.name)
  check(s ~= nil and s.value == p.clients, "lynd_clients of " .. p.name)
  s = find("lynd_path_state", "path", p.name)
  check(s ~= nil and s.labels.state == p.state, "lynd_path_state of " .. p.name)
  s = find("lynd_path_rate_mbps", "path", p.name)
  check(s ~= nil and s.value == p.rate, "lynd_path_rate_mbps of " .. p.name)
end
check(replies.counters ~= nil, "the recording holds a counters reply")
local c = replies.counters or {}
for reason, n in pairs(c.moves_by_reason or {}) do
  local s = find("lynd_moves_total", "reason", reason)
  check(s ~= nil and s.value == n, "lynd_moves_total of " .. reason)
end
local held = find("lynd_moves_held_total")
check(held ~= nil and held.value == c.moves_held, "lynd_moves_held_total")
local nl = find("lynd_events_total", "type", "bridge")
check(nl ~= nil and c.events ~= nil and nl.value == c.events.bridge, "lynd_events_total of bridge")

-- Without the daemon the scrape says so and nothing else.
local function scrape_with(r)
  replies, out, closed, waited = r, {}, false, 0
  local ok, err = pcall(collector.scrape)
  check(ok, "the scrape raises no error: " .. tostring(err))
  check(closed, "the connection is closed")
end
scrape_with({})
check(#out == 2 and out[2] == "lynd_up 0", "lynd_up 0 when lynd does not answer")

-- A hung lynd: every call waits its whole timeout. The scrape must end well
-- inside Prometheus' 10 s scrape timeout, or the node's other metrics go too.
hung = true
scrape_with({ status = {} })
hung = false
check(#out == 2 and out[2] == "lynd_up 0", "lynd_up 0 when lynd hangs")
check(waited > 0 and waited <= 3, "a hung lynd costs at most 3 s, not " .. waited)

-- Garbled replies: every element of the wrong type is passed over, label
-- values are escaped, and what is sound still comes through.
scrape_with({
  status = "up",
  paths = { paths = { { name = "ath12", state = "NORMAL", rate = 866, clients = 2 } } },
})
check(#out == 2 and out[2] == "lynd_up 0", "lynd_up 0 when status is no table")
scrape_with({
  status = { version = 7 },
  paths = { paths = { "ath0", 5, { name = 3 }, { name = 'a"b\\c\nd', type = {}, state = "NORMAL", rate = "fast",
    util = 0 / 0, clients = 3 }, { name = "ath12", state = {}, quota = 10000 } } },
  counters = { moves_by_reason = { 1, 2, better_path = 4, [true] = 1, weird = "x" }, events = "none",
    state_changes = { ['NOR"MAL'] = 1 }, tool_run_failures = {}, moves_held = 2 },
})
types, samples = read_exposition(out)
check(types.lynd_up ~= nil and find("lynd_up").value == 1, "lynd_up 1 when status is a table")
check(find("lynd_clients", "path", 'a"b\\c\nd') ~= nil, "an odd path name is escaped, not dropped")
check(find("lynd_path_state", "path", 'a"b\\c\nd') ~= nil, "its state too, with an empty type")
check(find("lynd_path_rate_mbps", "path", 'a"b\\c\nd') == nil, "a rate that is no number is passed over")
check(find("lynd_path_utilisation_percent") == nil, "not a number is passed over")
check(find("lynd_path_quota", "path", "ath12") ~= nil, "a path whose state is garbled keeps its other figures")
check(find("lynd_path_state", "path", "ath12") == nil, "a state that is no string is passed over")
check(find("lynd_moves_total", "reason", "better_path").value == 4, "string keys of a counter table count")
check(#samples == 7, "seven samples from the garbled replies, not " .. #samples)
check(find("lynd_path_state_changes_total", "state", 'NOR"MAL') ~= nil, "an odd key is escaped")
check(find("lynd_moves_held_total").value == 2, "a sound counter beside garbled ones")

-- A binding that raises instead of answering.
package.loaded["ubus"] = { connect = function() error("socket gone") end }
collector = dofile(collector_path)
out = {}
check(pcall(collector.scrape), "a failing connect raises no error")
check(#out == 2 and out[2] == "lynd_up 0", "lynd_up 0 when the connect fails")

if failures > 0 then
  io.stderr:write(failures .. " check(s) failed\n")
  os.exit(1)
end
print(recorded .. " samples, all in the exposition format")
