// Checks the rows written by dump_pitch against an independent music theory
// package. Where this library's rules knowingly part from ordinary theory the
// row is checked against what the rules promise instead, and counted apart.
// Usage: node compare.mjs pitch.tsv   (exit status 1 on any unexplained row)
import { readFileSync } from "node:fs";
import { distance, transpose, note, interval } from "@tonaljs/core";

const rows = readFileSync(process.argv[2], "utf8").trim().split("\n").map((line) => line.split("\t"));
const counts = {};
const failures = [];
const count = (what) => { counts[what] = (counts[what] ?? 0) + 1; };
const fail = (text) => failures.push(text);

// Staff position of a note name: letter steps from C0.
const position = (name) => { const n = note(name); return "CDEFGAB".indexOf(n.letter) + 7 * n.oct; };
const isPerfectKind = (num) => [0, 3, 4].includes((Math.abs(num) - 1) % 7);
const chroma = (name) => note(name).chroma;

// Ordinary naming of `steps` letters spanning `semitones`, both counted the
// same way up, for the cases the package leaves to its own conventions.
const kStepSize = [0, 2, 4, 5, 7, 9, 11];
const theoryName = (steps, semitones) => {
  const size = Math.abs(steps);
  const offset = semitones - (12 * Math.floor(size / 7) + kStepSize[size % 7]);
  const names = isPerfectKind(size + 1)
    ? { "-3": "ddd", "-2": "dd", "-1": "d", 0: "P", 1: "A", 2: "AA", 3: "AAA" }
    : { "-4": "ddd", "-3": "dd", "-2": "d", "-1": "m", 0: "M", 1: "A", 2: "AA", 3: "AAA" };
  return (steps < 0 ? "-" : "") + (size + 1) + (names[offset] ?? "P");
};

for (const row of rows) {
  const [kind] = row;
  if (kind === "note") {
    // What is written sounds the MIDI pitch.
    const [, source, midi, name] = row;
    if (note(name).midi === Number(midi)) count(`note ${source}`);
    else fail(`${source}: ${name} does not sound MIDI ${midi}`);
  } else if (kind === "interval") {
    const [, from, to, ours] = row;
    const theirs = distance(from, to);
    const steps = position(to) - position(from);
    const semitones = note(to).midi - note(from).midi;
    if ((steps > 0 && semitones < 0) || (steps < 0 && semitones > 0)) {
      // Letters and sound move opposite ways: the rules read a descent of
      // the letters' size; the package follows the sound.
      const size = Math.abs(steps) + 1;
      if (ours.startsWith(`-${size}`) && /^-\d+[PMmAd]+$/.test(ours)) count("interval: contradicting spellings read as descending");
      else fail(`interval ${from} ${to}: ours ${ours}, expected a descending ${size}`);
    } else if (semitones === 0 && steps !== 0) {
      // One sound under two letters (B#3 to C4): the package picks a
      // direction by its own convention; the letters decide here.
      const expected = theoryName(steps, 0);
      if (ours === expected) count("interval: one sound, two letters, named by the letters");
      else fail(`interval ${from} ${to}: ours ${ours}, expected ${expected}`);
    } else if (/AAAA|dddd/.test(theirs)) {
      // Beyond triply augmented or diminished: the rules have no quality and read perfect.
      if (ours === theirs.replace(/[Ad]+$/, "P")) count("interval: beyond triple reads perfect");
      else fail(`interval ${from} ${to}: ours ${ours}, theirs ${theirs} (expected perfect)`);
    } else if (ours === theirs) count("interval: agrees");
    else fail(`interval ${from} ${to}: ours ${ours}, theirs ${theirs}`);
  } else if (kind === "transpose") {
    const [, from, name, ours] = row;
    const iv = interval(name);
    const theirs = transpose(from, name);
    if (!isPerfectKind(iv.num) && iv.q === "ddd") {
      count("transpose: triply diminished second/third/sixth/seventh cannot be asked (skipped)");
    } else if (/^[EB]##/.test(from) && iv.num === 2) {
      // From E or B double sharp up a second, the plain letter above sounds
      // below the start; the rules measure that step as a descent and land a
      // semitone low.
      if (note(ours).midi === note(theirs).midi - 1) count("transpose: E##/B## up a second lands a semitone low");
      else fail(`transpose ${from} ${name}: ours ${ours}, theirs ${theirs} (expected a semitone below)`);
    } else if (Math.abs(note(theirs).alt) > 2) {
      // Needs more than a double accidental: respelled, same sound.
      if (note(ours).midi === note(theirs).midi) count("transpose: respelled beyond double accidentals, same sound");
      else fail(`transpose ${from} ${name}: ours ${ours}, theirs ${theirs} (expected same MIDI)`);
    } else if (ours === theirs) count("transpose: agrees");
    else fail(`transpose ${from} ${name}: ours ${ours}, theirs ${theirs}`);
  } else if (kind === "key") {
    // n sharps: n fifths up from C; n flats: n fourths up.
    const [, signature, tonic] = row;
    const n = Number(signature);
    let expected = "C4";
    for (let i = 0; i < Math.abs(n); ++i) expected = transpose(expected, n > 0 ? "5P" : "4P");
    if (note(tonic).pc === note(expected).pc) count("key tonic");
    else fail(`key ${n}: ours ${tonic}, expected ${note(expected).pc}`);
  } else if (kind === "transposekey") {
    const [, before, semitones, after] = row;
    const s = Number(semitones);
    const expected = s === 0 ? chroma(before) : (((chroma(before) + s) % 12) + 12) % 12;
    if (chroma(after) === expected) count("transposed key tonic");
    else fail(`TransposeKey ${before} by ${s}: ours ${after}`);
  }
}

for (const [what, n] of Object.entries(counts).sort()) console.log(`${String(n).padStart(6)}  ${what}`);
for (const text of failures.slice(0, 50)) console.log(`FAIL ${text}`);
const passed = Object.values(counts).reduce((a, b) => a + b, 0);
console.log(`${passed} passed, ${failures.length} failed`);
process.exit(failures.length === 0 ? 0 : 1);
