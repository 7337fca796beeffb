#!/usr/bin/env node
// Holds the library's spelled pitches, intervals, transpositions and keys
// against an independent music theory package (@tonaljs). The library never
// uses the package; only this check does.
//
// Run it:
//   npm ci --prefix tools/theory-check
//   cmake --build <build> && ctest --test-dir <build> -R theory_check --output-on-failure
// or by hand: node tools/theory-check/check.js <build>/tests/theory_sample
//
// Exit status: 0 when every compared result agrees, 1 when any differs,
// 77 (a skip for CTest) when the package is not installed, 2 when the sample
// program cannot be run.
'use strict';

const { execFileSync } = require('child_process');

let Interval, Note, Key;
try {
  Interval = require('@tonaljs/interval');
  Note = require('@tonaljs/note');
  Key = require('@tonaljs/key');
} catch (error) {
  console.log('the theory package is not installed (npm ci --prefix tools/theory-check); skipped');
  process.exit(77);
}

if (process.argv.length < 3) {
  console.error('usage: check.js <path of theory_sample>');
  process.exit(2);
}

let sample;
try {
  sample = execFileSync(process.argv[2], [], { encoding: 'utf8', maxBuffer: 64 << 20 });
} catch (error) {
  console.error(`cannot run ${process.argv[2]}: ${error.message}`);
  process.exit(2);
}

// The library's quality numbers, in the package's notation.
const QUALITY = ['P', 'M', 'm', 'A', 'd', 'AA', 'dd', 'AAA', 'ddd'];

function intervalName(quality, size, descending) {
  return (descending ? '-' : '') + (size + 1) + QUALITY[quality];
}

// Letters C..B as 0..6, and the scientific octave of a name such as "Bb3".
const letterIndex = (name) => 'CDEFGAB'.indexOf(name[0]);
const octaveOf = (name) => Number(name.match(/-?\d+$/)[0]);
const pitchClassName = (name) => name.replace(/-?\d+$/, '');
const steps = (from, to) => letterIndex(to) + 7 * octaveOf(to) - letterIndex(from) - 7 * octaveOf(from);

// The simplest key on each pitch class, as ordinary theory picks it: among
// the signatures of 7 flats to 7 sharps whose tonic sounds it, those with the
// fewest accidentals (two at F sharp / G flat, where either will do).
const SIGNATURES = Array.from({ length: 15 }, (_, i) => i - 7);
const signatureChroma = (count) => Note.chroma(Key.majorTonicFromKeySignature(count));
function simplestKeys(chroma) {
  const fits = SIGNATURES.filter((count) => signatureChroma(count) === chroma);
  const fewest = Math.min(...fits.map(Math.abs));
  return fits.filter((count) => Math.abs(count) === fewest);
}
const signedCount = (sharps, flats) => (sharps > 0 ? sharps : -flats);

// The package's interval from one note to another, when it agrees with the
// notes themselves: as many letter steps and semitones, each with its sign.
// Where alterations carry a note across the octave line the package may name
// the interval from the pitch classes alone (C4 to B#3 as 7A, twelve
// semitones, where none lie between them); the interval read the other way
// round and turned is then taken, and when neither reading fits, the pair is
// reported as one the package cannot name.
function fitsNotes(name, from, to) {
  const interval = Interval.get(name), letters = steps(from, to);
  return !interval.empty && interval.semitones === Note.midi(to) - Note.midi(from) &&
    (letters === 0 ? Math.abs(interval.num) === 1 : interval.num === letters + Math.sign(letters));
}

function consistentDistance(from, to) {
  const fits = (name) => fitsNotes(name, from, to);
  const forward = Interval.distance(from, to);
  if (fits(forward))
    return forward;
  const back = Interval.distance(to, from);
  const turned = back.startsWith('-') ? back.slice(1) : '-' + back;
  return fits(turned) ? turned : null;
}

// Where this library's rules deliberately differ from ordinary theory. Each
// rule says which results it covers and what is compared there instead
// (nothing, when `compare` is absent). Every case a rule covers is counted
// in the report, so a rule that starts to swallow more than it should shows.
const EXCEPTIONS = [
  {
    kind: 'spell',
    why: 'a double accidental that can spell neither the pitch class nor its natural stores degree 7 (no spelling)',
    covers: (c) => c.name.startsWith('?'),
  },
  {
    kind: 'spell',
    why: 'the octave field has 4 bits: B sharp below MIDI 12 belongs to octave -1 of the field and wraps to 15',
    covers: (c) => c.midi < 12 && octaveOf(c.name) === 14,
  },
  {
    kind: 'interval',
    why: 'a quality beyond triply augmented or diminished has no value and reads as perfect (where the package ' +
      'names the interval, it must be beyond triple)',
    covers: (c) => /P$/.test(c.library) && !fitsNotes(c.library, c.from, c.to),
    compare: (c) => c.theory === null || /AAAA|dddd/.test(c.theory),
  },
  {
    kind: 'interval',
    why: 'letters rising while the sound falls (B#4 to Cb5) read as a descent, measured from the inversion',
    covers: (c) => steps(c.from, c.to) > 0 && Note.midi(c.to) < Note.midi(c.from),
  },
  {
    kind: 'interval',
    why: 'letters falling while the sound rises (Db4 to C#4) are named as the fall of the letters; the package ' +
      'finds no name for these, so only that the name spans the notes is compared',
    covers: (c) => steps(c.from, c.to) < 0 && Note.midi(c.to) > Note.midi(c.from),
    compare: (c) => fitsNotes(c.library, c.from, c.to),
  },
  {
    kind: 'transpose',
    why: 'from E or B double sharp up a second, the natural letter above sounds below the start, the measuring ' +
      'step reads that as a descent and the result sounds a semitone under the interval',
    covers: (c) => !c.descending && c.size === 1 && /^[EB]##\d/.test(c.from),
    compare: (c) => Note.midi(Note.transpose(c.from, c.asked)) - 1 === c.midi,
  },
  {
    kind: 'transpose',
    why: 'a triply diminished second, third, sixth or seventh cannot be asked for: it counts as major, ' +
      'so the sound of the major interval is compared',
    covers: (c) => c.asked !== c.interval,
    compare: (c) => Note.midi(Note.transpose(c.from, c.asked)) === c.midi,
  },
  {
    kind: 'transpose',
    why: 'a pitch holds at most a double accidental; a result beyond it is spelled again from its sound, ' +
      'so only the sound is compared',
    covers: (c) => Math.abs(Note.get(c.theory).alt) > 2,
    compare: (c) => Note.midi(c.theory) === c.midi,
  },
  {
    kind: 'key',
    why: 'the degree table keeps 0 for one sharp, although G is degree 4; callers rely on it',
    covers: (c) => c.sharps === 1 && c.field === 'degree',
  },
  {
    kind: 'transposekey',
    why: 'a shift that takes the tonic below MIDI 0 (more than five octaves down) leaves the key unchanged',
    covers: (c) => c.tonicMidi + c.semitones < 0 && (c.tonicMidi + c.semitones) % 12 !== 0,
    compare: (c) => c.newCount === c.oldCount,
  },
];

const compared = {};
const exceptionCounts = new Array(EXCEPTIONS.length).fill(0);
const differences = [];
const unnamed = [];

// Compare one case: `agrees` is the ordinary-theory verdict, unless a rule of
// the library covers the case.
function judge(kind, c, agrees, describe) {
  compared[kind] = (compared[kind] || 0) + 1;
  const index = EXCEPTIONS.findIndex((rule) => rule.kind === kind && rule.covers(c));
  const ok = index < 0 ? agrees() : EXCEPTIONS[index].compare ? EXCEPTIONS[index].compare(c) : true;
  if (index >= 0)
    exceptionCounts[index]++;
  if (!ok)
    differences.push(`${kind}: ${describe()}${index >= 0 ? ` (under the exception: ${EXCEPTIONS[index].why})` : ''}`);
}

for (const line of sample.split('\n')) {
  if (!line)
    continue;
  const f = line.split(' ');
  switch (f[0]) {
    case 'spell': {
      // Whatever the rule that picked it, a spelling must sound its MIDI pitch.
      const c = { how: f[1], name: f[2], midi: Number(f[3]) };
      judge('spell', c, () => Note.midi(c.name) === c.midi,
        () => `${c.how} gave ${c.name} for MIDI ${c.midi}; the package hears ${Note.midi(c.name)}`);
      break;
    }
    case 'interval': {
      const c = { from: f[1], to: f[2], library: intervalName(Number(f[3]), Number(f[4]), f[5] === '1') };
      c.theory = consistentDistance(c.from, c.to);
      judge('interval', c, () => {
        if (c.theory !== null)
          return c.library === c.theory;
        unnamed.push(`${c.from} to ${c.to} (library ${c.library})`);
        return true;
      },
        () => `${c.from} to ${c.to}: library ${c.library}, package ${c.theory}`);
      break;
    }
    case 'transpose': {
      const c = { from: f[1], quality: Number(f[2]), size: Number(f[3]), descending: f[4] === '1',
        result: f[5], midi: Number(f[6]) };
      c.interval = intervalName(c.quality, c.size, c.descending);
      // The interval as the library reads it (see the exceptions).
      c.asked = c.quality === 8 && ![0, 3, 4].includes(c.size % 7) ? intervalName(1, c.size, c.descending) : c.interval;
      c.theory = Note.transpose(c.from, c.interval);
      judge('transpose', c, () => c.result === c.theory && Note.midi(c.theory) === c.midi,
        () => `${c.from} by ${c.interval}: library ${c.result} (MIDI ${c.midi}), package ${c.theory}`);
      break;
    }
    case 'key': {
      const sharps = Number(f[1]), flats = Number(f[2]);
      const tonic = f[3], midi = Number(f[4]), chroma = Number(f[5]), degree = Number(f[6]), quality = Number(f[7]);
      const theory = Key.majorTonicFromKeySignature(signedCount(sharps, flats));
      const label = `${sharps} sharps, ${flats} flats`;
      const fields = {
        // The reference pitch is the tonic with the key's own accidental, in
        // the octave from middle C up.
        tonic: [() => pitchClassName(tonic) === theory && Note.midi(tonic) === midi && midi === 60 + Note.chroma(theory),
          () => `${label}: tonic ${tonic} (MIDI ${midi}), package ${theory}`],
        chroma: [() => chroma === Note.chroma(theory), () => `${label}: pitch class ${chroma}, package ${Note.chroma(theory)}`],
        degree: [() => degree === letterIndex(theory), () => `${label}: degree ${degree}, package ${theory}`],
        // The quality of the interval from C up to the tonic.
        quality: [() => QUALITY[quality] === Interval.get(Interval.distance('C', theory)).q,
          () => `${label}: quality ${QUALITY[quality]}, package C to ${theory} is ${Interval.distance('C', theory)}`],
      };
      for (const [field, [agrees, describe]] of Object.entries(fields))
        judge('key', { sharps, flats, field }, agrees, describe);
      break;
    }
    case 'transposekey': {
      const c = { oldCount: signedCount(Number(f[1]), Number(f[2])), semitones: Number(f[3]),
        newCount: signedCount(Number(f[4]), Number(f[5])) };
      c.tonicMidi = 60 + signatureChroma(c.oldCount);
      const target = ((signatureChroma(c.oldCount) + c.semitones) % 12 + 12) % 12;
      // No shift keeps the key as written; any other lands on the simplest
      // key of the new tonic.
      judge('transposekey', c,
        () => (c.semitones === 0 ? c.newCount === c.oldCount : simplestKeys(target).includes(c.newCount)),
        () => `key ${c.oldCount} by ${c.semitones}: library ${c.newCount}, package tonic ` +
          `${Key.majorTonicFromKeySignature(c.newCount)}, wanted one of ${simplestKeys(target)}`);
      break;
    }
    default:
      console.error(`unknown line from the sample: ${line}`);
      process.exit(2);
  }
}

const total = Object.values(compared).reduce((a, b) => a + b, 0);
console.log(`compared ${total} results: ` + Object.entries(compared).map(([k, n]) => `${k} ${n}`).join(', '));
EXCEPTIONS.forEach((rule, i) => console.log(`  ${exceptionCounts[i]} by the library's own rule (${rule.kind}): ${rule.why}`));
if (unnamed.length > 0) {
  console.log(`  ${unnamed.length} intervals not compared: the package names none that fits the notes:`);
  for (const line of unnamed.slice(0, 20))
    console.log(`    ${line}`);
}
if (differences.length > 0) {
  console.log(`${differences.length} differ from the package:`);
  for (const line of differences.slice(0, 200))
    console.log(`  ${line}`);
  process.exit(1);
}
console.log('all others agree with the package');
