/** A point in time, UTC: Unix seconds and the nanoseconds in them. */
export class Time {
  constructor(seconds: number, nanoseconds: number);
  readonly seconds: number;
  readonly nanoseconds: number;
  /** To the millisecond, which is as fine as a Date gets. */
  readonly date: Date;
  /** Nanoseconds since 1970-01-01 UTC. */
  readonly unixNanoseconds: bigint;
  /** ISO 8601 with nine digits, as "2016-12-31T23:59:59.000000001Z". */
  toString(): string;
}

/**
 * An event header. Arrays have the values of mirror 1 to 6; counters and dead times are in units of 100 ns, offsets in ns.
 * Fields that the file's version lacks have the values of a new header.
 */
export interface EventHeader {
  eventNumber: number;
  stnNumber: number;
  eventClass: number;
  eventType: number;
  /** Bit 0 is mirror 1. */
  mirrorDataBits: number;
  mirrorStatus: number;
  runNo: number;
  triggerSource: number[];
  statusBits: number;
  timeStamp: Time;
  timeCorrectionQuality: number;
  t10Mhz: number;
  offset: number;
  mirrorTimeOffset: number[];
  /** Null for mirrors without data. */
  rawMirrorTime: (Time | null)[];
  triggerTimeStamp: number[];
  deadTimeCounter: bigint[];
  vetoTimeCounter: bigint;
  runTimeCounter: bigint[];
  stnDaqDeadTime: bigint;
  mirrorDaqDeadTime: bigint[];
  mirrorNSkippedTriggers: number[];
  mirrorEventLabel: number[];
  t3Id: number;
  t3TimeAtGround: Time;
  nRejectedT3: number;
  /** In seconds. */
  totalT3DeadTime: number;
}

/** The run at its start. Versions are texts as "2.1.100", null where they are not known. */
export interface RunHeader {
  stnNumber: number;
  mirrorStatus: number;
  runNo: number;
  startTime: Time;
  userName: string;
  comment: string;
  evbVersion: string | null;
  stnEventVersion: string | null;
  mrEventVersion: string | null;
  readoutVersion: string | null;
}

/** The run at its end. Dead times are in units of 100 ns, other times in seconds. */
export interface RunTrailer {
  mirrorStatus: number;
  nEvents: number;
  vetoTimeCounter: bigint;
  deadTimeCounter: bigint[];
  lifeTimeCounter: number[];
  mirrorDaqDeadTime: bigint[];
  mirrorNSkippedTriggers: number[];
  stnDaqDeadTime: bigint;
  nT3: number;
  nRejectedT3: number;
  totalT3DeadTime: number;
  startTime: Time;
  stopTime: Time;
  totalTime: number;
}

export interface Trace {
  /** Station pixel number, 1 to 2880. */
  pixel: number;
  /** 1 to 6. */
  mirror: number;
  /** 1 to 480. */
  mirrorPixel: number;
  startBin: number;
  endBin: number;
  /** The 16-bit words of the bins from startBin to endBin: sample, bit 14 threshold changed, bit 15 pixel trigger. */
  words: Uint16Array;
  /** The 12-bit samples of the same bins, each 100 ns long. */
  samples: Uint16Array;
  startTime: number;
  prevThreshold: number;
  actualThreshold: number;
  actualRate: number;
  mean: number;
  variance: number;
}

/** A triggered pixel: station pixel number, and a flag for each of 100 time slices. */
export interface Trigger {
  pixel: number;
  slices: boolean[];
}

/** A station file, open for reading. */
export interface Run {
  /** The number of events. */
  readonly length: number;
  /** The run header; null if there is none. */
  runHeader(): Promise<RunHeader | null>;
  /** The run trailer; null if there is none, as when the run did not end regularly. */
  runTrailer(): Promise<RunTrailer | null>;
  /** The headers of `count` events from entry `first` on, by default all. Nothing but headers is read. */
  headers(first?: number, count?: number): Promise<EventHeader[]>;
  /** The traces of an event, by ascending pixel number. */
  traces(entry: number): Promise<Trace[]>;
  /** Station pixel numbers of the pixels that took part in an event, ascending. */
  pixels(entry: number): Promise<number[]>;
  /** The triggered pixels of an event. */
  triggers(entry: number): Promise<Trigger[]>;
}

/**
 * Opens a station file: a path (Node.js), a URL, a File of the browser, or an ArrayBuffer with all of a file. Rejects what
 * can't be opened or is no whole station file.
 */
export function open(source: string | File | ArrayBuffer): Promise<Run>;

/** The same from objects that JSROOT's own `treeProcess` gives; branches are named "StnEvent.fEventHeader" and the like. */
export function decodeHeader(eventHeader: object): EventHeader;
export function decodeTraces(fadcData: object): Trace[];
export function decodeTrace(trace: object): Trace;
export function decodeWords(trace: object): Uint16Array;
export function decodePixels(pixelList: object): number[];
export function decodeTriggers(pixelData: object): Trigger[];
