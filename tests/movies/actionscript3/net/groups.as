// movie: version="12" document="Main"
// Groups of peers can be described and not be met; whoever watches streams hears of each; no server permits anything.
package {
    import flash.display.*;
    import flash.events.*;
    import flash.net.*;
    import flash.net.drm.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var group:GroupSpecifier = new GroupSpecifier("chess");
            group.postingEnabled = true;
            group.setPostingPassword("secret");
            group.addBootstrapPeer("abcd");
            trace(group.toString() === group.groupspecWithoutAuthorizations(), group.groupspecWithAuthorizations().indexOf(group.toString()));
            trace(group.authorizations() === GroupSpecifier.encodePostingAuthorization("secret"), group.minGroupspecVersion);
            trace(new GroupSpecifier("chess").toString() === new GroupSpecifier("chess").toString(), new GroupSpecifier("go").toString() === group.toString());
            for each (var name:* in [null, ""]) { try { new GroupSpecifier(name); } catch (e:Error) { trace(e.errorID); } }
            var connection:NetConnection = new NetConnection();
            connection.connect(null);
            try { new NetGroup(connection, group.toString()); } catch (e:ArgumentError) { trace(e.errorID); }
            // ---- who watches ----
            var monitor:NetMonitor = new NetMonitor();
            monitor.addEventListener(NetMonitorEvent.NET_STREAM_CREATE, function(e:NetMonitorEvent):void { trace("new", e.netStream === monitor.listStreams()[0]); });
            var stream:NetStream = new NetStream(connection);
            trace(monitor.listStreams().length, monitor.listStreams()[0] === stream);
            // ---- permissions ----
            var manager:DRMManager = DRMManager.getDRMManager();
            trace(manager === DRMManager.getDRMManager(), DRMManager.isSupported);
            manager.addEventListener(DRMErrorEvent.DRM_ERROR, function(e:DRMErrorEvent):void { trace(e.type, e.errorID, e.subErrorID, e.contentData); });
            manager.addEventListener(DRMAuthenticationErrorEvent.AUTHENTICATION_ERROR, function(e:DRMAuthenticationErrorEvent):void { trace(e.type, e.errorID); });
            manager.loadVoucher(new DRMContentData(), LoadVoucherSetting.ALLOW_SERVER);
            manager.authenticate("http://example.com", "d", "u", "p");
            try { manager.loadVoucher(null, ""); } catch (e:Error) { trace(e.errorID); }
            var status:DRMStatusEvent = new DRMStatusEvent();
            trace(status.type, status.isLocal, new DRMErrorEvent().type);
        }
    }
}
