#!/usr/bin/env bash
# Builds the corpus of the MIDI cross-check in OUT (made if missing):
#   OUT/abc/       abc2midi over every abc tune Debian ships with abcmidi
#   OUT/made/      files csvmidi writes from listings below, together every
#                  kind of event the reader knows, in formats 0 and 1
#   OUT/corrupt/   hand-made corrupt variants of the files above
# Exit 77 (skipped) when abc2midi or csvmidi is missing.
set -euo pipefail
out=${1:?usage: make-midi-corpus.sh OUT}
for tool in abc2midi csvmidi; do
  command -v "$tool" >/dev/null 2>&1 || { echo "make-midi-corpus: $tool is missing" >&2; exit 77; }
done
examples=/usr/share/doc/abcmidi/examples
rm -rf "$out"
mkdir -p "$out/abc" "$out/made" "$out/corrupt"

shopt -s nullglob
for abc in "$examples"/*.abc "$examples"/*.abc.gz; do
  name=$(basename "${abc%.gz}" .abc)
  if [[ $abc == *.gz ]]; then gzip -dc "$abc"; else cat "$abc"; fi >"$out/abc/$name.abc"
  # abc2midi writes one file per tune beside its input, named after the
  # file and the tune number; it complains about many tunes and still
  # writes them.
  abc2midi "$out/abc/$name.abc" >/dev/null 2>&1 || true
done
rm -f "$out"/abc/*.abc

# Every event kind: notes ended both ways, a note over a bar line, every
# channel message, tempo and meter changes, keys, system exclusive, texts,
# lyrics and chord symbols (sequencer specific 7D 43 48 root type bass).
csvmidi >"$out/made/every-event.mid" <<'CSV'
0, 0, Header, 1, 3, 96
1, 0, Start_track
1, 0, Title_t, "Conductor"
1, 0, Copyright_t, "none"
1, 0, Tempo, 500000
1, 0, Time_signature, 4, 2, 24, 8
1, 0, Key_signature, 2, "major"
1, 0, System_exclusive, 5, 126, 127, 9, 1, 247
1, 12, System_exclusive_packet, 2, 243, 1
1, 96, Marker_t, "verse"
1, 96, Cue_point_t, "cue"
1, 96, Instrument_name_t, "organ"
1, 384, Tempo, 400000
1, 384, Time_signature, 3, 2, 24, 8
1, 384, Key_signature, -3, "minor"
1, 1000, Tempo, 16777215
1, 1100, Tempo, 1
1, 1200, Time_signature, 7, 3, 12, 8
1, 1200, End_track
2, 0, Start_track
2, 0, Title_t, "Piano"
2, 0, Program_c, 0, 5
2, 0, Control_c, 0, 7, 100
2, 0, Control_c, 0, 10, 64
2, 0, Pitch_bend_c, 0, 8192
2, 0, Lyric_t, "la"
2, 0, Sequencer_specific, 5, 125, 67, 72, 49, 8
2, 0, Note_on_c, 0, 60, 100
2, 24, Channel_aftertouch_c, 0, 50
2, 24, Poly_aftertouch_c, 0, 60, 30
2, 48, Pitch_bend_c, 0, 9000
2, 96, Note_off_c, 0, 60, 64
2, 96, Note_on_c, 0, 64, 90
2, 192, Note_on_c, 0, 64, 0
2, 192, Sequencer_specific, 6, 125, 67, 72, 35, 19, 54
2, 336, Note_on_c, 0, 67, 80
2, 432, Note_off_c, 0, 67, 0
2, 500, Note_on_c, 0, 67, 80
2, 1500, Note_off_c, 0, 67, 0
2, 1500, End_track
3, 0, Start_track
3, 0, Note_on_c, 9, 36, 120
3, 0, Note_on_c, 1, 48, 70
3, 48, Note_off_c, 9, 36, 0
3, 480, Note_off_c, 1, 48, 0
3, 480, Note_on_c, 1, 48, 71
3, 480, Note_on_c, 1, 48, 72
3, 481, Note_off_c, 1, 48, 0
3, 482, Note_off_c, 1, 48, 0
3, 482, End_track
0, 0, End_of_file
CSV

csvmidi >"$out/made/format0.mid" <<'CSV'
0, 0, Header, 0, 1, 120
1, 0, Start_track
1, 0, Tempo, 600000
1, 0, Time_signature, 6, 3, 36, 8
1, 0, Key_signature, -2, "major"
1, 0, Note_on_c, 3, 62, 90
1, 60, Note_on_c, 3, 62, 0
1, 60, Note_on_c, 4, 50, 60
1, 60, Pitch_bend_c, 3, 9000
1, 90, System_exclusive, 3, 65, 16, 247
1, 120, Lyric_t, "la"
1, 400, Note_off_c, 4, 50, 0
1, 400, End_track
0, 0, End_of_file
CSV

# A long piece at a division that is not a power of two, with a tempo
# change every bar and meters that change: times the float may round.
{
  echo "0, 0, Header, 1, 2, 480"
  echo "1, 0, Start_track"
  echo "1, 0, Time_signature, 4, 2, 24, 8"
  for ((bar = 0; bar < 300; bar++)); do
    echo "1, $((bar * 1920)), Tempo, $((400000 + bar * 997))"
    ((bar == 150)) && echo "1, $((bar * 1920)), Time_signature, 2, 2, 24, 8"
  done
  echo "1, $((300 * 1920)), End_track"
  echo "2, 0, Start_track"
  for ((i = 0; i < 3000; i++)); do
    t=$((i * 193))
    echo "2, $t, Note_on_c, 2, $((40 + i % 40)), $((1 + i % 127))"
    echo "2, $((t + 150 + i % 500)), Note_off_c, 2, $((40 + i % 40)), 0"
  done | sort -t, -k2,2n -s
  echo "2, $((3000 * 193 + 700)), End_track"
  echo "0, 0, End_of_file"
} | csvmidi >"$out/made/long.mid"

# Corrupt variants: cut short, a track length past the end, running status
# with no status, a delta time of five bytes.
for f in "$out/made/every-event.mid" "$out"/abc/coleraine*.mid; do
  [[ -f $f ]] || continue
  name=$(basename "$f" .mid)
  size=$(stat -c %s "$f")
  head -c $((size / 2)) "$f" >"$out/corrupt/$name-half.mid"
  head -c 30 "$f" >"$out/corrupt/$name-30.mid"
  { head -c 18 "$f"; printf '\x7f\xff\xff\xff'; tail -c +23 "$f"; } >"$out/corrupt/$name-length.mid"
done
printf 'MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\7\0\x3c\x40\0\xff\x2f\0' >"$out/corrupt/no-status.mid"
printf 'MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\x0c\x81\x81\x81\x81\x01\x90\x3c\x40\0\xff\x2f\0' >"$out/corrupt/long-delta.mid"
echo "make-midi-corpus: $(ls "$out"/abc | wc -l) abc files, $(ls "$out"/made | wc -l) made, $(ls "$out"/corrupt | wc -l) corrupt"
