-- The work of ScriptBench.cpp.
local function time(name, f) local t = os.clock(); f(); print(string.format("%s %.4f", name, os.clock() - t)) end
local cards = {}
for i = 0, 99999 do cards[i + 1] = { Name = "Card " .. i, Amount = i % 100 } end
time("loop", function()
  local i, s, m = 0, 0, 1000 * 1000
  while i < 10000 * 1000 do i = i + 1; s = s + i; if s > m then s = s - s end end
end)
time("walk", function() local s = 0; for _, c in ipairs(cards) do s = s + c["Amount"] end end)
time("text", function()
  local t = {}
  for i = 1, 1000 * 1000 do t[#t + 1] = "abc" end
  local s = table.concat(t)
end)
time("random", function() local x; for i = 1, 1000 * 1000 do x = math.random(6) end end)
