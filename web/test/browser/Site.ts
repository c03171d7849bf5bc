// A site to test the page at: the real daemon on the virtual bus, the hub, and what can be done to
// them from outside.
import { type ChildProcessWithoutNullStreams, spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { connect, type Socket } from 'node:net';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface, type Interface } from 'node:readline';

const root = process.env['QELM_ROOT'] ?? '';
const build = process.env['QELM_BUILD'] ?? join(root, 'build-release');

export const address = 'http://127.0.0.1:5080';

// One line to the virtual bus, and its answer.
function asked(socket: Socket, line: string): Promise<string> {
  return new Promise((resolve, reject) => {
    let answer = '';
    const take = (bytes: Buffer) => {
      answer += bytes.toString();
      if (!/^(ok|error:.*)$/m.test(answer)) return;
      socket.off('data', take);
      if (answer.includes('error:')) reject(new Error(`${line}: ${answer}`));
      else resolve(answer);
    };
    socket.once('error', reject);
    socket.on('data', take);
    socket.write(`${line}\n`);
  });
}

export class Site {
  private constructor(
    private readonly process: ChildProcessWithoutNullStreams,
    private readonly lines: Interface,
    readonly folder: string,
  ) {}

  // With the cards of the bus's own choice where no options say otherwise, and further sections of
  // the hub's settings.
  static async start(busOptions: string[] = [], settings = ''): Promise<Site> {
    const folder = mkdtempSync(join(tmpdir(), 'qelm-page-'));
    writeFileSync(
      join(folder, 'hub.toml'),
      `[daemon]\nlog = "/run/qelm/qelm.log"\n[http]\nlisten = ["127.0.0.1:5080"]\n` +
        `[store]\nfolder = "${folder}/store"\n[virtual-bus]\ncontrol = "${folder}/bus"\n${settings}`,
    );
    const child = spawn(join(root, 'tools/sandbox'), [
      '--host-network',
      join(root, 'web/test/browser/site'),
      build,
      join(root, 'web/dist'),
      folder,
      ...busOptions,
    ]);
    child.stderr.pipe(process.stderr);
    const site = new Site(child, createInterface(child.stdout), folder);
    await site.answer();
    await site.hubAnswers();
    return site;
  }

  async stop(): Promise<void> {
    const ended = new Promise((resolve) => this.process.once('exit', resolve));
    this.process.stdin.end();
    await ended;
    rmSync(this.folder, { recursive: true, force: true });
  }

  killDaemon = () => this.order('daemon kill');
  startDaemon = () => this.order('daemon start');
  killHub = () => this.order('hub kill');
  startHub = () => this.order('hub start');

  // A control line for the virtual bus; what it answers.
  async bus(line: string): Promise<string> {
    const socket = connect(join(this.folder, 'bus'));
    try {
      return await asked(socket, line);
    } finally {
      socket.end();
    }
  }

  // Resolves when such a frame has come over the bus because of what is done.
  async frame(bytes: string, does: () => Promise<unknown>): Promise<void> {
    const socket = connect(join(this.folder, 'bus'));
    try {
      await asked(socket, 'mark');
      const comes = asked(socket, `wait frame ${bytes} within 60s`);
      await Promise.all([comes, does()]);
    } finally {
      socket.end();
    }
  }

  async api(verb: string, path: string, body?: object): Promise<unknown> {
    const answer = await fetch(address + path, {
      method: verb,
      headers: { 'Content-Type': 'application/json' },
      ...(body ? { body: JSON.stringify(body) } : {}),
    });
    if (!answer.ok) throw new Error(`${verb} ${path}: ${await answer.text()}`);
    return answer.json();
  }

  // The daemon has found the adapter, and the cards.
  async cardsAnswer(): Promise<void> {
    for (let tries = 0; tries < 1200; ++tries) {
      const { adapter } = (await this.api('GET', '/api/bus')) as { adapter: { state: string } };
      const { cards } = (await this.api('GET', '/api/cards')) as { cards: unknown[] };
      if (adapter.state === 'up' && cards.length > 0) return;
      await new Promise((resolve) => setTimeout(resolve, 50));
    }
    throw new Error('no card answers');
  }

  private async order(line: string): Promise<void> {
    this.process.stdin.write(`${line}\n`);
    await this.answer();
    if (line === 'hub start') await this.hubAnswers();
  }

  private answer(): Promise<void> {
    return new Promise((resolve, reject) => {
      this.process.once('exit', () => {
        reject(new Error('the site has ended'));
      });
      this.lines.once('line', (line) => {
        if (line === 'ok') resolve();
        else reject(new Error(line));
      });
    });
  }

  private async hubAnswers(): Promise<void> {
    for (let tries = 0; tries < 1200; ++tries) {
      const isThere = await fetch(`${address}/healthz`).then(
        () => true,
        () => false,
      );
      if (isThere) return;
      await new Promise((resolve) => setTimeout(resolve, 50));
    }
    throw new Error('the hub does not answer');
  }
}
