// movie: version="17" rate="20"
// A movie that asks for workers learns that there are none, and keeps the locks that it takes for them.
import flash.utils.getDefinitionByName;
var Worker:* = getDefinitionByName("flash.system.Worker"), WorkerDomain:* = getDefinitionByName("flash.system.WorkerDomain");
var Mutex:* = getDefinitionByName("flash.concurrent.Mutex"), Condition:* = getDefinitionByName("flash.concurrent.Condition");
trace(Worker.isSupported, Worker.current, Worker.current === Worker.current, Worker.current.isPrimordial, Worker.current.state, WorkerDomain.isSupported);
Worker.current.setSharedProperty("a", 5);
trace(Worker.current.getSharedProperty("a"), Worker.current.getSharedProperty("b"), WorkerDomain.current.listWorkers());
for each (var c:* in [Worker, WorkerDomain, getDefinitionByName("flash.system.MessageChannel")]) try { new c(); } catch (e:Error) { trace(e); }
try { Worker.current.setSharedProperty(null, 1); } catch (e:Error) { trace(e); }
var m:* = new Mutex();
try { m.unlock(); } catch (e:Error) { trace(e.errorID); }
m.lock(); trace(m.tryLock()); m.unlock();
var d:* = new Condition(m);
trace(d.mutex === m, d.wait(5)); m.unlock();
try { d.notify(); } catch (e:Error) { trace(e); }
try { new Condition(null); } catch (e:Error) { trace(e); }
