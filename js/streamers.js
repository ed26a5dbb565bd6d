// Old forms of records that the descriptions in their files do not tell. Importing this teaches JSROOT to read them.

import { addUserStreamer } from 'jsroot/io';

const kClass = 'TStnEventHeader';
const kFirstReadableVersion = 4;
const kNMirrors = 6;

// Version 4 in its order on file: name, reader, and the number of elements of an array, which stands before it.
const kVersion4 = [
  ['fEventNumber', 'ntou4'],
  ['fStnNumber', 'ntou1'],
  ['fEventClass', 'ntoi4'],
  ['fEventType', 'ntoi4'],
  ['fMirrorDataBits', 'ntou1'],
  ['fMirrorStatus', 'ntou1'],
  ['fRunNo', 'ntou4'],
  ['fTriggerSource', 'ntou1', 6],
  ['fTimeStamp', 'time'],
  ['fT10Mhz', 'ntof'],
  ['fOffset', 'ntof'],
  ['fMirrorTimeOffset', 'ntou4', 6],
  ['fRawMirrorTime', 'times'],
  ['fDeadTimeCounter', 'ntou4', 12],
  ['fVetoTimeCounter', 'ntou4', 2],
  ['fT3Id', 'ntou2'],
  ['fT3TimeAtGround', 'time'],
];

const kNoT3Time = { fSec: 315964800, fNanoSec: 0 }; // GPS second 0

function readTime(buffer) {
  return buffer.classStreamer({}, 'VdRoot::TTimeStamp');
}

function readCounted(buffer, name, read, expected) {
  const found = buffer.ntoi4();
  if (found !== expected) throw new RangeError(`${kClass}: ${name} has ${found} elements on file, expected ${expected}`);
  return Array.from({ length: expected }, () => buffer[read]());
}

function readVersion4(buffer, header) {
  buffer.classStreamer(header, 'TObject');
  for (const [name, read, n] of kVersion4) {
    if (read === 'time') header[name] = readTime(buffer);
    else if (read === 'times') header[name] = Array.from({ length: kNMirrors }, () => readTime(buffer));
    else header[name] = n ? readCounted(buffer, name, read, n) : buffer[read]();
  }
}

// Versions from 5 on are described by the file itself.
addUserStreamer(kClass, (buffer, header) => {
  const version = buffer.last_read_version;
  if (version < kFirstReadableVersion) throw new Error(`${kClass}: version ${version} can't be read`);
  if (version === kFirstReadableVersion) readVersion4(buffer, header);
  else buffer.streamClassMembers(header, kClass, version);
});

// Version 2 lacks the byte that ROOT writes before such an array.
addUserStreamer('TStnPixelList', (buffer, list) => {
  const version = buffer.last_read_version;
  if (version !== 2) return buffer.streamClassMembers(list, 'TStnPixelList', version);
  buffer.classStreamer(list, 'TObject');
  list.fNPixels = buffer.ntou4();
  list.fPixelVectorSize = buffer.ntou4();
  list.fPixelVector = Array.from({ length: list.fPixelVectorSize }, () => buffer.ntou4());
  return list;
});

const zeros = () => new Array(kNMirrors).fill(0);

/** Gives the fields that the file's version lacks the values that the library gives them. */
export function fillMissingFields(header) {
  if (header.fTriggerTimeStamp === undefined) {
    header.fTriggerTimeStamp = zeros();
    header.fTimeCorrectionQuality = header.fT10Mhz > 50 && header.fT10Mhz <= 150 ? 2 : -1;
  }
  if (header.fStatusBits === undefined) {
    // These versions do hold a T3, but it is given up with the rest of the T3 values.
    Object.assign(header, { fStatusBits: 0, fT3Id: 0, fT3TimeAtGround: kNoT3Time, fNRejectedT3: 0, fTotalT3DeadTime: 0 });
    Object.assign(header, { fStnDaqDeadTime: 0, fMirrorDaqDeadTime: zeros(), fMirrorNSkippedTriggers: zeros() });
  }
  header.fMirrorEventLabel ??= zeros();
  header.fRunTimeCounter ??= zeros();
  return header;
}
