// What a run gives, in the form in which the library's own values are kept.

const plain = (counter) => (counter <= BigInt(Number.MAX_SAFE_INTEGER) ? Number(counter) : `${counter}n`);
const stamp = (time) => time && [time.seconds, time.nanoseconds];

/** JSON text as an object in which whole numbers above 2^53 are texts as "18446744073709551615n". */
export function parseExactly(text) {
  const exact = text.replace(/([[:,])(\d{16,})(?=[,\]}])/g, (all, before, digits) =>
    BigInt(digits) > BigInt(Number.MAX_SAFE_INTEGER) ? `${before}"${digits}n"` : all);
  return JSON.parse(exact);
}

const code = (version) => (version ? version.split('.').reduce((sum, part) => sum * 256 + Number(part), 0) : 0);

function runHeader(run) {
  return {
    station: run.stnNumber, mirror_status: run.mirrorStatus, run: run.runNo, start: stamp(run.startTime),
    user: run.userName, comment: run.comment,
    versions: [run.evbVersion, run.stnEventVersion, run.mrEventVersion, run.readoutVersion].map(code),
  };
}

function runTrailer(run) {
  return {
    mirror_status: run.mirrorStatus, events: run.nEvents, veto_time: plain(run.vetoTimeCounter),
    dead_time: run.deadTimeCounter.map(plain), life_time: run.lifeTimeCounter,
    mirror_daq_dead_time: run.mirrorDaqDeadTime.map(plain), skipped: run.mirrorNSkippedTriggers,
    stn_daq_dead_time: plain(run.stnDaqDeadTime), t3: [run.nT3, run.nRejectedT3, run.totalT3DeadTime],
    start: stamp(run.startTime), stop: stamp(run.stopTime), total_time: run.totalTime,
  };
}

export function header(h) {
  return {
    event: h.eventNumber, station: h.stnNumber, class: h.eventClass, type: h.eventType, data_bits: h.mirrorDataBits,
    mirror_status: h.mirrorStatus, run: h.runNo, trigger_source: h.triggerSource, status_bits: h.statusBits,
    time: stamp(h.timeStamp), quality: h.timeCorrectionQuality, t10: h.t10Mhz, offset: h.offset,
    mirror_offset: h.mirrorTimeOffset, raw_time: h.rawMirrorTime.map(stamp), trigger_stamp: h.triggerTimeStamp,
    dead_time: h.deadTimeCounter.map(plain), veto_time: plain(h.vetoTimeCounter), run_time: h.runTimeCounter.map(plain),
    stn_daq_dead_time: plain(h.stnDaqDeadTime), mirror_daq_dead_time: h.mirrorDaqDeadTime.map(plain),
    skipped: h.mirrorNSkippedTriggers, label: h.mirrorEventLabel, t3_id: h.t3Id, t3_time: stamp(h.t3TimeAtGround),
    rejected_t3: h.nRejectedT3, t3_dead_time: h.totalT3DeadTime,
  };
}

/** Column, row and first slice of each triggered pixel, by mirror. */
function firstSlices(triggers) {
  const mirrors = [[], [], [], [], [], []];
  for (const { pixel, slices } of triggers) {
    const index = (pixel - 1) % 480;
    mirrors[Math.floor((pixel - 1) / 480)].push([Math.floor(index / 24) + 1, (index % 24) + 1, slices.indexOf(true)]);
  }
  return mirrors;
}

function trace(t) {
  const words = Array.from(t.words);
  while (words.at(-1) === 0) words.pop();
  const monitor = [t.prevThreshold, t.actualThreshold, t.actualRate, t.mean, t.variance];
  return { station_pixel: t.pixel, monitor, start_time: t.startTime, words };
}

/** Everything in a run; of the library's values only what this package gives. */
export async function values(run) {
  const headers = await run.headers();
  const events = [];
  for (let entry = 0; entry < run.length; ++entry) {
    events.push({
      header: header(headers[entry]),
      pixels: await run.pixels(entry),
      first: firstSlices(await run.triggers(entry)),
      traces: (await run.traces(entry)).map(trace),
    });
  }
  return { run_header: runHeader(await run.runHeader()), run_trailer: runTrailer(await run.runTrailer()), events };
}

/** The library's values of the same things, from the text of its JSON. */
export function libraryValues(text) {
  const all = parseExactly(text);
  for (const event of all.events) {
    event.first = event.pixel_data.map((data) => (data ? data.first : []));
    for (const t of event.traces) {
      delete t.pixel_word;
      delete t.trace_info;
    }
    for (const name of ['pixel_data', 't3', 'geometry']) delete event[name];
  }
  return all;
}
