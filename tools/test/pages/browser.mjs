// A page in a Chromium without a window, driven through a pipe.

import { spawn } from 'node:child_process';
import { mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';

const options = ['--headless=new', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage', '--no-first-run', '--hide-scrollbars',
                 '--disable-background-networking', '--host-resolver-rules=MAP * ~NOTFOUND', '--remote-debugging-pipe'];

export const chromium = process.env.STN_CHROMIUM ?? '/usr/bin/chromium';

/** One page. `problems` has what it wrote to the console, its exceptions, and each address that it asked for. */
export class Page {
  #commands = new Map();
  #last = 0;
  problems = [];

  static async open() {
    const page = new Page();
    page.profile = await mkdtemp(join(tmpdir(), 'stn-pages-'));
    page.process = spawn(chromium, [...options, `--user-data-dir=${page.profile}`, 'about:blank'],
                         { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
    page.ended = new Promise((resolve) => page.process.on('exit', resolve));
    page.#listen(page.process.stdio[4]);
    const { targetInfos } = await page.send('Target.getTargets');
    const { targetId } = targetInfos.find(({ type }) => type === 'page');
    ({ sessionId: page.session } = await page.send('Target.attachToTarget', { targetId, flatten: true }));
    for (const domain of ['Page', 'Runtime', 'Log', 'Network']) await page.send(`${domain}.enable`);
    return page;
  }

  #listen(stream) {
    let text = '';
    stream.setEncoding('utf8');
    stream.on('data', (piece) => {
      text += piece;
      const messages = text.split('\0');
      text = messages.pop();
      for (const message of messages) this.#take(JSON.parse(message));
    });
  }

  #take({ id, result, error, method, params }) {
    if (id) {
      const { resolve, reject } = this.#commands.get(id);
      this.#commands.delete(id);
      return error ? reject(new Error(error.message)) : resolve(result);
    }
    if (method === 'Runtime.exceptionThrown') this.problems.push(params.exceptionDetails.exception?.description ?? params.exceptionDetails.text);
    if (method === 'Runtime.consoleAPICalled') this.problems.push(params.args.map(({ value }) => value).join(' '));
    if (method === 'Log.entryAdded') this.problems.push(params.entry.text);
    if (method === 'Network.requestWillBeSent' && params.request.url !== this.url && !params.request.url.startsWith('data:'))
      this.problems.push(`asked for ${params.request.url}`);
    if (method === 'Page.loadEventFired') this.loaded?.();
  }

  send(method, params = {}) {
    const id = ++this.#last;
    this.process.stdio[3].write(`${JSON.stringify({ id, method, params, sessionId: this.session })}\0`);
    return new Promise((resolve, reject) => this.#commands.set(id, { resolve, reject }));
  }

  /** Opens a file; `size` is that of the window, `dark` and `touch` what the user has. */
  async visit(file, { width = 1280, height = 900, dark = false, touch = false } = {}) {
    this.url = pathToFileURL(file).href;
    await this.send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: 1, mobile: touch });
    await this.send('Emulation.setTouchEmulationEnabled', { enabled: touch });
    await this.send('Emulation.setEmulatedMedia', { features: [{ name: 'prefers-color-scheme', value: dark ? 'dark' : 'light' }] });
    this.problems = [];
    const loaded = new Promise((resolve) => { this.loaded = resolve; });
    await this.send('Page.navigate', { url: this.url });
    await loaded;
  }

  /** The value of an expression in the page. */
  async ask(expression) {
    const { result, exceptionDetails } = await this.send('Runtime.evaluate', { expression, returnByValue: true, awaitPromise: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  /** The middle of the first element of a selector, scrolled into view. */
  middle(selector) {
    return this.ask(`(() => { const node = document.querySelector(${JSON.stringify(selector)}); node.scrollIntoView({ block: 'center' });
      const box = node.getBoundingClientRect(); return { x: box.x + box.width / 2, y: box.y + box.height / 2 }; })()`);
  }

  async click(selector) {
    const at = { ...(await this.middle(selector)), button: 'left', clickCount: 1 };
    await this.send('Input.dispatchMouseEvent', { type: 'mousePressed', ...at });
    await this.send('Input.dispatchMouseEvent', { type: 'mouseReleased', ...at });
  }

  /** A finger on the middle of an element, so many pixels beside it. */
  async tap(selector, dx = 0) {
    const { x, y } = await this.middle(selector);
    await this.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: [{ x: x + dx, y }] });
    await this.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
    await this.ask('new Promise((done) => setTimeout(done, 50))');
  }

  async move(x, y) {
    await this.send('Input.dispatchMouseEvent', { type: 'mouseMoved', x, y });
  }

  async press(key) {
    const text = key.length === 1 ? key : undefined;
    const code = { Tab: 9, ArrowLeft: 37, ArrowUp: 38, ArrowRight: 39, ArrowDown: 40, ' ': 32 }[key];
    await this.send('Input.dispatchKeyEvent', { type: 'keyDown', key, text, windowsVirtualKeyCode: code });
    await this.send('Input.dispatchKeyEvent', { type: 'keyUp', key, windowsVirtualKeyCode: code });
  }

  async picture(file) {
    const [width, height] = await this.ask('[innerWidth, document.documentElement.scrollHeight]');
    const { data } = await this.send('Page.captureScreenshot', { captureBeyondViewport: true, clip: { x: 0, y: 0, width, height, scale: 1 } });
    await writeFile(file, Buffer.from(data, 'base64'));
  }

  async close() {
    this.process.kill();
    await this.ended;
    await rm(this.profile, { recursive: true, force: true, maxRetries: 5 });
  }
}
