// What JScript sees: properties with keys, For Each, errors.
var passed = 0;
var failed = 0;
function check(what, holds) {
  if (holds) {
    ++passed;
  } else {
    ++failed;
    WScript.Echo("failed: " + what);
  }
}
function create(name) {
  return new ActiveXObject("AQ_Data_Control." + name);
}
function raised(call) {
  try {
    call();
  } catch (error) {
    return { number: error.number & 0xffff, text: error.message };
  }
  return { number: 0, text: "" };
}

var time = create("AQ_Time");
time.TODstring = "01:02:03";
check("time", time.TODseconds === 3723);
var spectrum = create("AQ_Spectrum");
spectrum.SPL(24) = 65.5;
check("level", spectrum.SPL(24) === 65.5 && spectrum.LowBand === 24);
spectrum.Time = time;
time.TODseconds = 5;
check("shared", spectrum.Time.TODseconds === 5);
check("null is accepted", raised(function () { spectrum.Time = null; }).number === 0);
var history = create("AQ_SpectralTimeHistory").Init(1, 4, 20, 22);
var count = 0;
for (var each = new Enumerator(history); !each.atEnd(); each.moveNext()) {
  count += each.item().HighBand;
}
check("enumerator", count === 88);
var levels = new VBArray(history.Levels);
check("array", levels.ubound(1) === 4 && levels.getItem(4, 3) === 0);
var header = create("AQ_HeaderSTH");
header.cCommentLines.Add("first");
check("default member", header.cCommentLines(1) === "first");
var error = raised(function () { return spectrum.SPL(30); });
check("error", error.number === 5 && error.text.indexOf("band 30") >= 0);
check("not a number", raised(function () { time.TODseconds = "x"; }).number === 13);
check("undefined", raised(function () { time.TODseconds = undefined; }).number === 13);
check("no variable", raised(function () {
  create("AQ_DataSTH").readFile("x", 1, 2);
}).number !== 0);

WScript.Echo(passed + " passed, " + failed + " failed");
