// A hub that tells what a test wants to be seen: serves the page, answers with prepared objects, and
// sends changes at any pace. For looks and costs; what is true is tested with the real one.
import { createHash } from 'node:crypto';
import { readFileSync } from 'node:fs';
import { createServer, type IncomingMessage, type Server, type ServerResponse } from 'node:http';
import type { AddressInfo, Socket } from 'node:net';
import { extname, join } from 'node:path';

import type { Changes, Snapshot, Who } from '../../src/api/Shapes.js';
import { frame, textsIn } from './frames.js';

const dist = join(process.env['QELM_ROOT'] ?? '', 'web/dist');
const acceptance = '258EAFA5-E914-47DA-95CA-C5AB0DC85B11'; // RFC 6455
const policy =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'";
const types: Record<string, string> = {
  '.html': 'text/html; charset=utf-8',
  '.js': 'text/javascript',
  '.css': 'text/css',
  '.svg': 'image/svg+xml',
};

export interface Scene {
  snapshot: Snapshot;
  who: Who;
  answers: Record<string, unknown>; // by method
}

interface Request {
  id: number;
  method: string;
  params: object;
}

export class StandIn {
  isAway = false; // takes no connection
  now: string | null = null; // its clock stands still there; null: it is this machine's
  readonly asked: string[] = []; // 'channels.set {"id":"5.0","value":true}'
  private readonly sockets = new Set<Socket>();
  private readonly forgotten = new Set<Socket>();
  private seq: number;

  private constructor(
    private readonly server: Server,
    private scene: Scene,
  ) {
    this.seq = scene.snapshot.seq;
  }

  static async start(scene: Scene): Promise<StandIn> {
    const server = createServer();
    const hub = new StandIn(server, scene);
    server.on('request', (request, response) => {
      hub.serve(request, response);
    });
    server.on('upgrade', (request, socket) => {
      hub.accept(request, socket as Socket);
    });
    await new Promise<void>((resolve) => server.listen(0, '127.0.0.1', resolve));
    return hub;
  }

  get address(): string {
    return `http://127.0.0.1:${(this.server.address() as AddressInfo).port}`;
  }

  // From the next connection on.
  show(scene: Partial<Scene>): void {
    this.scene = { ...this.scene, ...scene };
    this.seq = this.scene.snapshot.seq;
  }

  tell(change: Partial<Changes>): void {
    const after = this.seq++;
    const none = { bus: null, cards: [], channels: [], page: null, events: [], lost: 0 };
    this.send({ method: 'changes', params: { ...none, ...change, after, seq: this.seq } });
  }

  drop(): void {
    for (const socket of this.sockets) socket.destroy();
    this.sockets.clear();
  }

  // Connections stay, and nothing comes or goes on them any more.
  forget(): void {
    for (const socket of this.sockets) {
      socket.removeAllListeners('data');
      socket.resume();
      this.forgotten.add(socket);
    }
    this.sockets.clear();
  }

  async stop(): Promise<void> {
    this.drop();
    for (const socket of this.forgotten) socket.destroy();
    this.server.closeAllConnections();
    await new Promise((resolve) => this.server.close(resolve));
  }

  private serve(request: IncomingMessage, response: ServerResponse): void {
    const path = request.url === '/' ? '/index.html' : (request.url ?? '');
    if (this.now !== null) response.setHeader('Date', new Date(this.now).toUTCString());
    if (path === '/api/session') {
      response.writeHead(200, { 'Content-Type': 'application/json' });
      response.end(JSON.stringify(this.scene.who));
      return;
    }
    const file = join(dist, path);
    response.writeHead(200, {
      'Content-Type': types[extname(file)] ?? '',
      'Content-Security-Policy': policy,
    });
    response.end(readFileSync(file));
  }

  private accept({ headers }: IncomingMessage, socket: Socket): void {
    if (this.isAway) {
      socket.destroy();
      return;
    }
    const key = createHash('sha1')
      .update((headers['sec-websocket-key'] ?? '') + acceptance)
      .digest('base64');
    socket.write(
      'HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n' +
        `Sec-WebSocket-Accept: ${key}\r\n\r\n`,
    );
    socket.on('error', () => this.sockets.delete(socket));
    socket.on('close', () => this.sockets.delete(socket));
    let rest: Buffer = Buffer.alloc(0);
    socket.on('data', (bytes: Buffer) => {
      const { texts, left } = textsIn(Buffer.concat([rest, bytes]));
      rest = left;
      for (const text of texts) this.answer(socket, JSON.parse(text) as Request);
    });
  }

  private answer(socket: Socket, { id, method, params }: Request): void {
    this.asked.push(`${method} ${JSON.stringify(params)}`);
    const { snapshot, who, answers } = this.scene;
    const known: Record<string, unknown> = {
      // Who has not logged in is told nothing, and keeps no name for later.
      ...(who.role !== null && { 'live.subscribe': { ...snapshot, seq: this.seq } }),
      'session.who': who,
      ...answers,
    };
    const error = {
      code: -32000,
      message: 'no',
      data: { title: 'no', status: 404, detail: method },
    };
    const outcome = method in known ? { result: known[method] } : { error };
    socket.write(frame(JSON.stringify({ jsonrpc: '2.0', id, ...outcome })));
    if (method === 'live.subscribe' && who.role !== null) this.sockets.add(socket);
  }

  private send(message: object): void {
    const bytes = frame(JSON.stringify({ jsonrpc: '2.0', ...message }));
    for (const socket of this.sockets) socket.write(bytes);
  }
}
