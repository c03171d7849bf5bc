// A broker beside the site, and whoever else is on it: tells kept topics, hears commands.
import { type ChildProcess, execFile, spawn } from 'node:child_process';
import { createInterface } from 'node:readline';
import { promisify } from 'node:util';

const run = promisify(execFile);
const host = ['-h', '127.0.0.1'];

export class Broker {
  readonly heard: string[] = []; // "TOPIC PAYLOAD", what is not kept
  private hearing: ChildProcess | undefined;

  private constructor(private readonly process: ChildProcess) {}

  static async start(): Promise<Broker> {
    const broker = new Broker(spawn('/usr/sbin/mosquitto', ['-p', '1883'], { stdio: 'ignore' }));
    // It listens as soon as somebody hears something.
    for (let tries = 0; tries < 1200; ++tries) {
      const isThere = await broker.tell('test', '').then(
        () => true,
        () => false,
      );
      if (isThere) return broker;
      await new Promise((resolve) => setTimeout(resolve, 50));
    }
    throw new Error('no broker');
  }

  async tell(topic: string, payload: string | object): Promise<void> {
    const text = typeof payload === 'string' ? payload : JSON.stringify(payload);
    await run('mosquitto_pub', [...host, '-q', '1', '-r', '-t', topic, '-m', text]);
  }

  // What comes on topics of some filters, from when this resolves.
  async hear(...filters: string[]): Promise<void> {
    const topics = [...filters, 'test/#'].flatMap((filter) => ['-t', filter]);
    this.hearing = spawn('mosquitto_sub', [...host, '-q', '1', '-v', ...topics], {
      stdio: ['ignore', 'pipe', 'inherit'],
    });
    const lines = createInterface(this.hearing.stdout as NodeJS.ReadableStream);
    const first = new Promise((resolve) => lines.once('line', resolve));
    lines.on('line', (line) => this.heard.push(line));
    await this.tell('test/begin', 'now');
    await first;
  }

  stop(): void {
    this.hearing?.kill();
    this.process.kill();
  }
}
